#pragma once

#include "plot/plot_data.h"
#include "plot/plot_page.h"

namespace brevold::plot {

/**
 * The scales of DOWN and UP while they hold, as areas from 1 on a logarithmic axis with 1 in the
 * middle. Black lines are the second replay.
 */
PlotPanel scalePanel(const PlotData& data);

}  // namespace brevold::plot
