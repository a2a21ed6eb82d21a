#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "replay/recording.h"
#include "replay/time_window.h"
#include "trace/timeline.h"

namespace brevold::plot {

struct PlotPoint {
    double timeS;  // since the start of the trace
    double value;  // NaN for a break in the curve
};
using PlotPoints = std::vector<PlotPoint>;

/** The curves of a picture of a replay, in a window of its trace. */
struct PlotData {
    // The window, since the start of the trace.
    double fromS;
    double toS;
    std::vector<std::string> layers;  // those with the focus, in the order of their first focus
    int32_t frames = 0;               // of layers in focus
    PlotPoints frameIntervalsMs;
    PlotPoints periodsMs;
    PlotPoints depths;      // of the layer in focus
    PlotPoints downScales;  // the start and the end of each request
    int32_t downs = 0;      // DOWN requests
    PlotPoints upScales;
    PlotPoints boosts;
    PlotPoints ratesHz;
    PlotPoints rateHintsHz;
    PlotPoints modes;
};

PlotData plotData(const trace::Timeline& timeline, const replay::Recording& recording,
                  const replay::TimeWindow& window);

}  // namespace brevold::plot
