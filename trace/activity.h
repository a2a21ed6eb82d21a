#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace brevold::trace {

class TraceInput;

/**
 * The threads and frequencies of the processors, and the calls of the buffer queue. Times are those
 * of the Timeline of the same trace.
 */
struct Activity {
    /** A processor switches to this thread; 0 is the idle thread. */
    struct Switch {
        int64_t timeNs;
        int32_t processor;
        int32_t tid;
    };
    struct Frequency {
        int64_t timeNs;
        int32_t processor;
        int64_t khz;
    };
    /** A thread takes an empty buffer from the queue, or returns it with a frame. */
    struct BufferCall {
        enum class Kind : uint8_t { Dequeue, Queue };

        Kind kind;
        int32_t pid;
        int32_t tid;
        int64_t beginNs;
        int64_t endNs;
    };

    // Each ordered by time, the calls by their ends.
    std::vector<Switch> switches;
    std::vector<Frequency> frequencies;
    std::vector<BufferCall> bufferCalls;
    /** The processes and the names of threads, where known. */
    std::unordered_map<int32_t, int32_t> processes;
    std::unordered_map<int32_t, std::string> names;
};

/**
 * Reads a whole trace. A latency dump has no activity. Throws InputError as readTimeline() does.
 */
Activity readActivity(TraceInput& input);

}  // namespace brevold::trace
