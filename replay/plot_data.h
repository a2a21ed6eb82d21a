#pragma once

#include <cstdint>
#include <vector>

#include "replay/recording.h"
#include "trace/timeline.h"

namespace brevold::replay {

struct PlotPoint {
    double timeS;  // since the start of the trace
    double value;  // NaN for a break in the curve
};
using PlotPoints = std::vector<PlotPoint>;

/** The curves of a picture of a replay. */
struct PlotData {
    PlotPoints frameIntervalsMs;
    PlotPoints periodsMs;
    PlotPoints depths;      // of the focused layer
    PlotPoints downScales;  // the start and the end of each request
    int32_t downs = 0;      // DOWN requests
    PlotPoints upScales;
    PlotPoints boosts;
    PlotPoints ratesHz;
    PlotPoints rateHintsHz;
    PlotPoints modes;
};

PlotData plotData(const trace::Timeline& timeline, const Recording& recording);

}  // namespace brevold::replay
