#include "sim/recording_text.h"

#include <fmt/format.h>
#include <fmt/ostream.h>

#include "base/time_units.h"

namespace brevold::sim {

namespace {

constexpr double kMinFit = 0.9;

std::string describeMethod(const RecordedWork& recording) {
    std::vector<std::string> threads;
    for (const RecordedWork::Thread& thread : recording.threads)
        threads.push_back(fmt::format("{} ({})", thread.name, thread.tid));
    switch (recording.method) {
        case WorkMethod::RunningTime:
            return fmt::format("running time of {} between two queues",
                               fmt::join(threads, " and "));
        case WorkMethod::DequeueToQueue:
            return "time from dequeue to queue";
        case WorkMethod::LatchToQueue:
            return "time from latch to queue while the queue is full";
    }
    return "";
}

std::string remedyOf(const RecordedWork& recording, bool isLate) {
    if (recording.assumedSpeed && (isLate || *recording.assumedSpeed < 1.0)) {
        return fmt::format("set a {} trace.speed in the device file", isLate ? "lower" : "higher");
    }
    return "compare operating points and governor with those of the recorded device";
}

}  // namespace

void printRecording(const RecordedWork& recording, double fit, double lateShare,
                    std::ostream& out) {
    fmt::print(out, "layer       {}: {} frames in {:.4g} s\n", recording.layer,
               recording.frames.size(), toSeconds(recording.lengthNs));
    fmt::print(out, "work        {}\n", describeMethod(recording));
    if (recording.assumedSpeed) {
        fmt::print(out, "            at an assumed speed of {:g} (trace.speed)\n",
                   *recording.assumedSpeed);
    } else {
        fmt::print(out, "            times the speed at the recorded frequency\n");
    }
    if (recording.unmeasuredFrames > 0) {
        fmt::print(out, "            unknown for {} of {} frames; the median is used\n",
                   recording.unmeasuredFrames, recording.frames.size());
    }
    fmt::print(out,
               "fit         {:.1f} % of the frames are latched at the recorded vsync with the "
               "library off\n",
               fit * 100);
    if (fit < kMinFit) {
        const bool isLate = lateShare > (1.0 - fit) / 2;
        fmt::print(out,
                   "            warning: below {:.0f} %, the result is not reliable; most other "
                   "frames are latched {}\n            than recorded: {}\n",
                   kMinFit * 100, isLate ? "later" : "earlier", remedyOf(recording, isLate));
    }
}

}  // namespace brevold::sim
