#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/device.h"
#include "trace/trace_input.h"

namespace brevold::sim {

/** How the work of recorded frames was measured: by the first of these that is possible. */
enum class WorkMethod : uint8_t {
    RunningTime,     // of the application's busiest threads, between two queues
    DequeueToQueue,  // from the time that the application gets a buffer
    LatchToQueue,    // from the latch that frees a buffer, while the queue is full
};

extern const Words<WorkMethod> kWorkMethodWords;

/** Times are nanoseconds of a simulation, since its start. */
struct RecordedFrame {
    int64_t earliestNs;   // the application started the frame at this time
    int64_t workNs;       // at the maximum frequency
    int64_t vsyncNs = 0;  // the compositor latched it after this vsync; 0 if unknown
    int64_t dueNs = 0;    // and passed it over before this one
};

/** The work of a layer's frames in a recording. */
struct RecordedWork {
    struct Thread {
        int32_t tid;
        std::string name;
    };

    std::string layer;
    WorkMethod method = WorkMethod::RunningTime;
    std::vector<Thread> threads;  // RunningTime: one or two, the busiest first
    std::optional<double>
            assumedSpeed;          // set if the speed of the recording is not known everywhere
    int32_t unmeasuredFrames = 0;  // whose work is the median of the others
    int64_t periodNs = 0;
    int64_t lengthNs = 0;  // whole periods
    int32_t maxDepth = 0;
    std::vector<RecordedFrame> frames;
};

/**
 * Reads the work of the frames of a layer, or of the application's layer with the most frames. If
 * the refresh rate changes, reads the frames at the rate with the most frames. `trace` has to be
 * opened with Reading::Repeated. Throws InputError.
 */
RecordedWork readRecordedWork(trace::TraceInput& trace, const std::optional<std::string>& layer,
                              const Device& device);

}  // namespace brevold::sim
