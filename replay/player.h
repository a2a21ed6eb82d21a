#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/virtual_platform.h"
#include "replay/hint.h"
#include "replay/timeline.h"

namespace brevold::replay {

struct ModeChange {
    int64_t timeNs;
    int32_t mode;
};

/** What the library did on a timeline. All lists are in time order. */
struct Recording {
    /** What brevoldInit answered. */
    bool isAnyFeatureOn = false;
    std::vector<Hint> hints;
    /** The first entry is the start; empty when the library does not report modes. */
    std::vector<ModeChange> modes;
    /** The vsyncs at which brevoldMonitor gave its verdict. */
    std::vector<int64_t> verdictTimesNs;
    std::vector<host::LogLine> log;
    /** The library's workers, by the index that a mark has for its thread. */
    std::vector<std::string> threads;
    std::vector<host::TraceMark> traceMarks;
};

/**
 * Plays the compositor to the library that a device would load, in the trace's time, with the
 * workers stepped after every call. Once per process: the library keeps its state. The device
 * profile must have been filled. Throws std::runtime_error when a library cannot be opened.
 */
Recording play(const Timeline& timeline);

}  // namespace brevold::replay
