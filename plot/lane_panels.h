#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plot/plot_data.h"
#include "plot/plot_page.h"

/** Panels of rows in which bars show when something holds. Thin black bars are the second replay.
 */
namespace brevold::plot {

/** Returns the times at which the first replay has no classified frame rate. */
PlotSpans unclassifiedSpans(const PlotData& data);

/** A row for each frame-rate mode. */
PlotPanel modePanel(const PlotData& data);

/** Jank boosts, from boost to release, and boost verdicts. */
PlotPanel boostPanel(const PlotData& data);

/** A moment to mark. Marks with the same label share a row. */
struct PlotMark {
    int64_t timeNs;
    std::string label;
};

/** A row for each label. `startNs` is the start of the trace. */
PlotPanel markPanel(const PlotData& data, const std::vector<PlotMark>& marks, int64_t startNs);

}  // namespace brevold::plot
