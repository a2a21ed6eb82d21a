#pragma once

#include <cstdint>

#include "replay/time_window.h"
#include "trace/timeline.h"

namespace brevold::report {

/** The pace of the frames of the layers in focus. Figures without a value are 0. */
struct FrameFigures {
    /** Intervals between two queued frames of one layer, without idle ones. */
    int32_t intervals = 0;
    double meanRateHz = 0.0;
    int64_t medianNs = 0;
    int64_t p95Ns = 0;
    int64_t p99Ns = 0;
    /** See replay::MissedRefreshes. */
    int64_t missedRefreshes = 0;
    /** Time in gaps without a frame that are idle gaps (android::isIdleGap). */
    int64_t idleNs = 0;
};

/** An interval and its missed refreshes count in the window that contains its end. */
FrameFigures frameFigures(const trace::Timeline& timeline, const replay::TimeWindow& window);

}  // namespace brevold::report
