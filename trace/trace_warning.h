#pragma once

#include <cstdint>
#include <vector>

#include "base/line_count.h"

namespace brevold::trace {

/**
 * An oddity in a trace that leaves its timeline usable, with the lines that have it. In a Perfetto
 * trace, which has no lines, the count is that of the things named below and the first line is 0.
 */
struct TraceWarning {
    enum class Kind : uint8_t {
        StrayLine,         // not an event, a comment or blank; skipped
        OutOfOrderLine,    // more than 1 ms earlier than a line above; skipped
        UnfinishedLine,    // the last one, which ends inside an event or a row; skipped
        StrayRow,          // not a row of a latency dump; skipped
        OutOfOrderRow,     // its frame was ready before that of an earlier row; skipped
        IncompletePacket,  // the last one of a Perfetto trace; skipped from there on
        DamagedPacket,     // skipped from the damage on
        LossyBundle,       // the recorder lost events before those of an ftrace bundle
        LossyProcessor,    // its ftrace buffer overran
        UnknownClock,      // an ftrace bundle whose clock is not related to boot time; taken as is
        OutOfOrderEvent,   // more than 1 ms earlier than one above in its bundle; skipped
        BadCounterValue,   // a counter's value is not a number; skipped
        RingOverrun,       // the recorder's buffer was full and lost its oldest events; counts them
        OtherCompositor,   // another process has about as many marks of a compositor; counts them
        UnknownPeriod,     // the first refresh period in the trace is not that of its start
        NegativeDepth,     // a queue depth below 0; taken as 0
        DepthJump,         // a queue depth that changes by more than one
    };

    Kind kind;
    LineCount lines;
    /**
     * In ns since the first event. RingOverrun: no processor's events are missing from here on.
     * UnknownPeriod: the refresh period is known from here on.
     */
    int64_t fromNs = 0;
    /** OtherCompositor: the process that was chosen, and the other. */
    int32_t pid = 0;
    int32_t otherPid = 0;
};

/** Adds a warning if there are lines that have the oddity. */
inline void addWarning(TraceWarning::Kind kind, const LineCount& lines,
                       std::vector<TraceWarning>* warnings) {
    if (lines.lines == 0) return;
    warnings->push_back({});
    warnings->back().kind = kind;
    warnings->back().lines = lines;
}

}  // namespace brevold::trace
