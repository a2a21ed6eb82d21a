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

/** A value that holds for a time. */
struct PlotSpan {
    double fromS;
    double toS;
    double value;
};
using PlotSpans = std::vector<PlotSpan>;

/** The library's requests and modes in one replay. */
struct ReplayCurves {
    PlotSpans modes;  // empty if the library does not report modes
    // Scales while the request holds. A span may start before the window.
    PlotSpans downs;
    PlotSpans ups;
    PlotSpans boosts;
    PlotSpans verdicts;  // the refreshes from the vsyncs with a boost verdict on
    PlotPoints rateHintsHz;
    // Requests sent in the window.
    int32_t downCount = 0;
    int32_t upCount = 0;
    int32_t boostCount = 0;
};

/** The curves of a picture of one trace, in a window. Curves are cut at the ends of the window. */
struct PlotData {
    // The window, since the start of the trace.
    double fromS;
    double toS;
    std::vector<std::string> layers;  // those with the focus, in the order of their first focus
    int32_t frames = 0;               // of layers in focus
    // 0 without frames.
    double firstFrameS = 0;
    double lastFrameS = 0;
    PlotPoints frameIntervalsMs;  // at the end of each interval
    PlotPoints missedRefreshes;   // at the latches that are late
    PlotSpans periodsMs;
    PlotSpans depths;  // of the layer in focus
    /** One replay, or the two to compare. */
    std::vector<ReplayCurves> replays;
};

PlotData plotData(const trace::Timeline& timeline,
                  const std::vector<const replay::Recording*>& recordings,
                  const replay::TimeWindow& window);

}  // namespace brevold::plot
