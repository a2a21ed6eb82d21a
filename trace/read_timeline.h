#pragma once

#include <optional>
#include <string>

#include "trace/timeline.h"
#include "trace/trace_form.h"
#include "trace/trace_input.h"

namespace brevold::trace {

struct TimelineOptions {
    /** Name of the layer to focus; its "#0" may be omitted. */
    std::optional<std::string> layer;
    /** Display refresh rate in Hz, 1 to 1000, instead of the trace's own. */
    std::optional<double> refreshRateHz;
};

/**
 * Reads a whole trace. Fills `form` unless it is null; a latency dump leaves it unchanged.
 * Throws InputError.
 */
Timeline readTimeline(TraceInput& input, const TimelineOptions& options, TraceForm* form = nullptr);

}  // namespace brevold::trace
