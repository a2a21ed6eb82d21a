#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "trace/process_dump.h"

namespace brevold::trace {

/** The notation of marks in a text trace, which differs between Android releases. */
struct MarkStyle {
    bool hasProcess = false;    // the column "(TGID)"
    bool hasFlags = false;      // the column "d..3"
    std::string event = "0";    // "0", "tracing_mark_write" or "print"
    bool endHasProcess = true;  // "E|pid" rather than "E"
    int32_t decimals = 0;       // the maximum number of decimals in an event's time
};

/** Ends the names of the tracks that a replay adds to a trace with marks of the library. */
constexpr std::string_view kReplayedSuffix = " (replayed)";

inline bool isReplayedTrack(std::string_view name) {
    return name.size() >= kReplayedSuffix.size() &&
           name.substr(name.size() - kReplayedSuffix.size()) == kReplayedSuffix;
}

/** The notation and the threads of a trace, for a writer that adds marks to it. */
struct TraceForm {
    /** Of a text. */
    MarkStyle style;
    /** The largest id of a packet sequence in a Perfetto trace. */
    uint32_t lastSequenceId = 0;
    /** Thread and process ids in the trace, with the thread's name where known. */
    std::unordered_map<int32_t, std::string> threads;
    /** Names of processes in a page, which are not part of its text. */
    ProcessNames processes;
    int32_t compositorPid = 0;
    int32_t compositorTid = 0;
    /** The trace has sections of the library, recorded on a device or added by a replay. */
    bool hasLibraryMarks = false;
};

}  // namespace brevold::trace
