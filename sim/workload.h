#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "sim/random.h"
#include "sim/recorded_work.h"
#include "sim/settings.h"

/**
 * The simulated application: when it begins a frame and how much work a frame is. A workload file
 * has key=value lines; the built-in workloads in sim/workloads are examples.
 *
 *   pace=free              a frame begins as soon as a buffer is free
 *   pace=vsync             a frame begins at a vsync; a vsync during a frame begins none
 *   pace=video             a frame begins every frame-refreshes and is due due-frames later
 *   refresh-hz=60          display refresh rate
 *   buffers=3              of the layer's queue, with the one on the display
 *   mean-ms=5              median work of a frame at the maximum frequency, at least 0.2 ms;
 *                          required
 *   sigma=0.15             standard deviation of the logarithm of the work
 *   rho=0.7                correlation of that logarithm from frame to frame
 *   phase=0.25             share by which the work rises or falls for 3 to 9 s at a time
 *   spike-share=0.002      share of frames with more work
 *   spike-min=1.5          their work is scaled by a factor from spike-min to spike-max
 *   spike-max=2.5
 *   gpu-ms=6               median GPU time of a frame
 *   gpu-sigma=0.1          standard deviation of its logarithm
 *   frame-refreshes=2      video: refreshes from frame to frame
 *   due-frames=3           video: frames from the start of the work to the time on the display
 *   burst-min-s=0.8        vsync: frames come in bursts of burst-min-s to burst-max-s
 *   burst-max-s=3
 *   gap-min-s=0.5          with gaps of gap-min-s to gap-max-s between them; 0: without gaps
 *   gap-max-s=2.5
 */
namespace brevold::sim {

enum class Pace : uint8_t {
    Free,
    Vsync,
    Video,
    Recorded,  // a frame begins when it did in a recording, at the earliest
};

/** Times of a frame, since the first vsync. */
struct FrameTiming {
    int64_t earliestNs = 0;       // it may begin
    int64_t dueNs = 0;            // it may be latched
    int64_t recordedVsyncNs = 0;  // see RecordedFrame::vsyncNs
};

struct Workload {
    std::string name;
    Pace pace = Pace::Free;
    double refreshHz = 60.0;
    int32_t buffers = 3;
    double meanMs = 0.0;
    double sigma = 0.0;
    double rho = 0.0;
    double phase = 0.0;
    double spikeShare = 0.0;
    double spikeMin = 1.0;
    double spikeMax = 1.0;
    double gpuMs = 0.0;
    double gpuSigma = 0.0;
    int32_t frameRefreshes = 1;
    int32_t dueFrames = 0;
    double burstMinS = 0.0;
    double burstMaxS = 0.0;
    double gapMinS = 0.0;
    double gapMaxS = 0.0;
    /** Pace::Recorded. The simulation repeats it. */
    std::shared_ptr<const RecordedWork> recording;

    int64_t periodNs() const {
        return recording ? recording->periodNs : static_cast<int64_t>(1e9 / refreshHz);
    }
    /** Time from frame to frame if the application keeps up. */
    int64_t framePeriodNs() const { return periodNs() * frameRefreshes; }

    /** Pace::Video, Recorded. */
    FrameTiming timing(int64_t index) const;
};

extern const Words<Pace> kPaceWords;

/** Names of the built-in workloads. */
std::vector<std::string> builtInWorkloads();

/** A built-in workload by its name, else the file at that path. Throws InputError. */
Workload readWorkload(const std::string& nameOrPath);

/** The frames of a recording. */
Workload recordedWorkload(const std::string& name, RecordedWork recording);

/** Throws InputError. */
Workload parseWorkload(std::string_view text, const std::string& name);

struct FrameWork {
    int64_t workNs;  // at the maximum frequency
    int64_t gpuNs;
};

/** The work of each frame, as a function of seed and index alone. */
class WorkSource {
  public:
    WorkSource(const Workload& workload, uint64_t seed) : mWorkload(workload), mRandom(seed) {}

    /** Call it with rising indices; some may be left out. */
    FrameWork frame(int64_t index);

  private:
    const Workload& mWorkload;
    const Random mRandom;
    int64_t mNextIndex = 0;
    double mLogarithm = 0.0;
    int64_t mPhaseIndex = -1;
    int64_t mPhaseEndNs = 0;
    double mPhaseFactor = 1.0;
};

/** When an application that draws in bursts is active. */
class BurstSource {
  public:
    BurstSource(const Workload& workload, uint64_t seed) : mWorkload(workload), mRandom(seed) {}

    /** Call it with rising times since the start. */
    bool isActive(int64_t timeNs);

  private:
    const Workload& mWorkload;
    const Random mRandom;
    int64_t mNextBurst = 0;
    int64_t mBurstEndNs = 0;
    int64_t mGapEndNs = 0;
};

}  // namespace brevold::sim
