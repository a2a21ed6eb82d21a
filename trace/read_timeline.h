#pragma once

#include "trace/library_sections.h"
#include "trace/timeline.h"
#include "trace/timeline_options.h"
#include "trace/trace_form.h"
#include "trace/trace_input.h"

namespace brevold::trace {

/**
 * Reads a whole trace. Fills `form` and `sections` unless they are null; a latency dump leaves them
 * unchanged. Throws InputError.
 */
Timeline readTimeline(TraceInput& input, const TimelineOptions& options, TraceForm* form = nullptr,
                      LibrarySections* sections = nullptr);

}  // namespace brevold::trace
