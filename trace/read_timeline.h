#pragma once

#include "trace/timeline.h"
#include "trace/timeline_options.h"
#include "trace/trace_form.h"
#include "trace/trace_input.h"

namespace brevold::trace {

/**
 * Reads a whole trace. Fills `form` unless it is null; a latency dump leaves it unchanged.
 * Throws InputError.
 */
Timeline readTimeline(TraceInput& input, const TimelineOptions& options, TraceForm* form = nullptr);

}  // namespace brevold::trace
