#pragma once

#include "plot/plot_data.h"
#include "plot/plot_page.h"

namespace brevold::plot {

/**
 * Adds the panels of a replay to a page: frame intervals, queue depth, frame-rate mode, DOWN
 * requests, UP requests and jank boosts, refresh rate.
 */
void addPanels(const PlotData& data, PlotPage* page);

}  // namespace brevold::plot
