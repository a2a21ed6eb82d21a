#pragma once

#include "plot/plot_data.h"
#include "plot/plot_page.h"

/** Panels of the trace itself, which do not depend on the library's settings. */
namespace brevold::plot {

/** The intervals between frames, scaled to the bulk of them; longer ones are marked at the top. */
PlotPanel intervalPanel(const PlotData& data);

PlotPanel missedRefreshPanel(const PlotData& data);

PlotPanel depthPanel(const PlotData& data);

/** The display's refresh rate and the refresh-rate hints. */
PlotPanel ratePanel(const PlotData& data);

}  // namespace brevold::plot
