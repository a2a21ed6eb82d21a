#pragma once

#include <cstdint>
#include <string_view>

namespace brevold::trace {

/** A mark that a process wrote into the trace: "B|pid|name", "E|pid" or "C|pid|name|value". */
struct TraceMark {
    enum class Kind : uint8_t { Begin, End, Counter };

    Kind kind;
    int64_t timeNs;
    int32_t tid;            // the thread that wrote it
    int32_t pid;            // the process named in the mark; 0 for an End
    std::string_view name;  // Begin, Counter; valid until the next call of the reader
    int64_t value;          // Counter
    int64_t line;           // line of the text, or ordinal of the event in a binary trace
};

}  // namespace brevold::trace
