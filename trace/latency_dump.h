#pragma once

#include <cstdint>
#include <istream>
#include <string>

#include "trace/trace_marks.h"

namespace brevold::trace {

/**
 * What "dumpsys SurfaceFlinger --latency" prints: the refresh period in ns, then a row a frame with
 * the times of its desired present, actual present and end of rendering ("ready").
 */
struct LatencyDump {
    /**
     * The same in the marks of a trace: a frame is queued when it is ready, and taken one refresh
     * before its present, at which a vsync ticks. What was queued and never shown is not in it.
     */
    TraceMarks marks;
    int64_t startNs = 0;
    int64_t endNs = 0;
    /** Rows that are none, with the line of the first. */
    LineCount strayRows;
    /** Rows whose frame was ready before that of an earlier row. */
    LineCount backwardRows;
};

/** Reads a dump whose layer is to have the name. Throws InputError, calling the dump by its path.
 */
LatencyDump readLatencyDump(std::istream& input, const std::string& path, const std::string& layer);

}  // namespace brevold::trace
