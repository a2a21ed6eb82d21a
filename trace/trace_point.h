#pragma once

#include <cstdint>

namespace brevold::trace {

/** A point in a trace. The line orders points of the same time. */
struct TracePoint {
    int64_t timeNs;
    int64_t line;
    int32_t tid = 0;  // the thread; 0 if unknown
};

}  // namespace brevold::trace
