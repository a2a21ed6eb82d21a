#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include "trace/timeline.h"

namespace brevold::replay {

/** A part of a trace, in the trace's own time. Both ends belong to it. */
struct TimeWindow {
    int64_t beginNs;
    int64_t endNs;

    bool contains(int64_t timeNs) const { return beginNs <= timeNs && timeNs <= endNs; }
    /** Returns the time in the window that is closest to `timeNs`. */
    int64_t clamp(int64_t timeNs) const { return std::clamp(timeNs, beginNs, endNs); }
    int64_t lengthNs() const { return endNs - beginNs; }
};

/** The part of a trace that the reports cover, in seconds from 0 since its first event. */
struct WindowOptions {
    std::optional<double> fromS;
    std::optional<double> toS;
};

/** Throws std::runtime_error if the ends are out of order. */
void checkWindow(const WindowOptions& options);

/**
 * Returns the window of a trace. Without options it is the whole trace; an end after that of the
 * trace is replaced by it. Throws InputError, with a message that begins with `path`, if the window
 * begins after the trace.
 */
TimeWindow windowOf(const trace::Timeline& timeline, const WindowOptions& options,
                    const std::string& path);

}  // namespace brevold::replay
