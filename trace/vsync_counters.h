#pragma once

#include <deque>
#include <vector>

#include "trace/compositor.h"
#include "trace/refresh_period.h"
#include "trace/timeline.h"
#include "trace/trace_point.h"

namespace brevold::trace {

/** The counter that toggles when the compositor composes. */
constexpr const char* kVsyncSfCounter = "VSYNC-sf";

/** The toggles of the counter that shows when the compositor's vsyncs are due. */
struct Vsyncs {
    VsyncSource source = VsyncSource::None;
    std::deque<TracePoint> toggles;
};

/** Moves the toggles out of the compositor's counter. */
Vsyncs takeVsyncs(Compositor& compositor);

/** A counter that shows the refresh period. */
struct PeriodCounter {
    PeriodSource source;
    IntervalKind intervals;  // between its ticks, if the source is not the stated period
    const CounterTrack* track;
};

/**
 * Returns the counters that show the refresh period, best first. Of counters of the same kind, that
 * of the display with the most hardware vsyncs is first, as the display that is composed for.
 */
std::vector<PeriodCounter> findPeriodCounters(const Compositor& compositor);

}  // namespace brevold::trace
