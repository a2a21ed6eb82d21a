#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/hint.h"
#include "host/virtual_platform.h"
#include "replay/frame_outcome.h"
#include "replay/play_options.h"

namespace brevold::replay {

struct ModeChange {
    int64_t timeNs;
    int32_t mode;
};

/** The reason why Recording::modes is empty. */
constexpr char kNoModesText[] =
        "not reported: needs jank boost or energy scaling allowed, and "
        "vendor.perf.brevold.debug=1";

/** A frame of the layer in focus. */
struct DecidedFrame {
    int64_t timeNs;
    FrameOutcome outcome;
};

/** A mark of the library. */
struct RecordedMark {
    host::TraceMark mark;
    /** The thread of the trace whose event led to the mark; 0 if unknown. */
    int32_t callerTid;
};

/** The library's behaviour during a replay. All lists are in time order. */
struct Recording {
    PlayOptions options;
    /** The result of brevoldInit. */
    bool isAnyFeatureOn = false;
    std::vector<host::Hint> hints;
    /** For each hint, the layer in focus: an index into Timeline::layers. */
    std::vector<int32_t> hintLayers;
    std::vector<DecidedFrame> frames;
    /** Starts with the initial mode. Empty if the library does not report modes. */
    std::vector<ModeChange> modes;
    /** The vsyncs at which brevoldMonitor returned 1. */
    std::vector<int64_t> verdictTimesNs;
    std::vector<host::LogLine> log;
    /** Names of the library's workers, indexed by TraceMark::thread. */
    std::vector<std::string> threads;
    std::vector<RecordedMark> marks;
};

}  // namespace brevold::replay
