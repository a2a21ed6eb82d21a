#pragma once

#include "replay/plot_data.h"
#include "replay/plot_page.h"

namespace brevold::replay {

/**
 * Adds the panels of a replay to a page: frame intervals, queue depth, frame-rate mode, DOWN
 * requests, UP requests and jank boosts, refresh rate.
 */
void addPanels(const PlotData& data, PlotPage* page);

}  // namespace brevold::replay
