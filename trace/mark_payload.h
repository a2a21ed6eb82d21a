#pragma once

#include <cstdint>
#include <string_view>

#include "trace/trace_mark.h"

namespace brevold::trace {

enum class MarkPayload : uint8_t {
    Mark,
    Other,            // not a mark of the kinds in TraceMark::Kind
    BadCounterValue,  // a counter whose value is not a 64-bit number
};

/**
 * Parses the text that a process wrote into the trace: "B|pid|name", "E", "E|pid" or
 * "C|pid|name|value". Sets the kind, pid, name and value of `mark` if the result is
 * MarkPayload::Mark. The name points into `payload`.
 */
MarkPayload parseMarkPayload(std::string_view payload, TraceMark* mark);

}  // namespace brevold::trace
