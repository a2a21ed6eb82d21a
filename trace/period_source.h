#pragma once

#include <optional>
#include <string>
#include <vector>

#include "trace/compositor.h"
#include "trace/queued_layer.h"
#include "trace/refresh_period.h"
#include "trace/timeline.h"

namespace brevold::trace {

/** The refresh periods of a trace. */
struct RefreshPeriods {
    PeriodSource source;
    std::string counter;                // see Timeline::periodCounter
    std::vector<PeriodChange> changes;  // the first is the initial period; ignore its time
    /** Set if the trace does not show the initial period; it is taken to be the next one. */
    std::optional<int64_t> unknownUntilNs = {};
};

/** Takes the periods from the best source that the trace has, or from `rateHz` if given. */
RefreshPeriods findRefreshPeriods(const Compositor& compositor,
                                  const std::deque<QueuedLayer>& layers,
                                  std::optional<double> rateHz);

}  // namespace brevold::trace
