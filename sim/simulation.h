#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "replay/play_options.h"
#include "sim/buffer_queue.h"
#include "sim/cluster.h"
#include "sim/device.h"
#include "sim/library.h"
#include "sim/observer.h"
#include "sim/service.h"
#include "sim/workload.h"

namespace brevold::sim {

using replay::BoostDepth;

/** The time of the first vsync. */
constexpr int64_t kStartNs = 1'000'000'000;

struct Scenario {
    Device device;
    Workload workload;
    BoostDepth boostDepth = BoostDepth::Left;
    /** Holds the application's cluster at this operating point; the governor has no effect. */
    std::optional<size_t> heldPoint;
    uint64_t seed = 1;
    int64_t warmUpNs = 0;
    int64_t measuredNs = 0;
};

/**
 * One run of the closed loop: the application's frames, the display, the compositor, the processor,
 * the service, and the library unless it is null. Event-driven; the same scenario gives the same
 * run on every platform.
 */
class Simulation {
  public:
    Simulation(const Scenario& scenario, Library* library, Observer& observer);

    /** Runs to the end. Call it once. */
    void run();

    /** Energy of a cluster since the end of the warm-up, in millijoules. */
    double energyMj(size_t cluster) { return mClusters[cluster].energyMj(mNowNs); }

  private:
    /** Sources of events. Of several events at one time, the first source here comes first. */
    enum class Source : uint8_t {
        MeasurementStart,
        AppWork,
        CompositionWork,
        HintArrival,
        HintExpiry,
        GovernorTick,
        Vsync,
        Latch,
        FrameTime,
    };
    static constexpr size_t kSourceCount = 9;

    struct SentHint {
        int64_t arrivalNs;
        host::Hint hint;
        double frameMhz;
    };

    void schedule(Source source, int64_t timeNs) { mTimesNs[static_cast<size_t>(source)] = timeNs; }
    void handle(Source source);
    void onVsync();
    void onLatch();
    void onAppWorkDone();
    void onCompositionDone();
    void onHintArrival();
    void onGovernorTick();

    void beginFrameIfPossible();
    void beginFrame(int64_t index, const FrameTiming& timing = {});
    void startTask(Task task, int64_t workNs);
    void finishTask(Task task);
    void sendHints();
    void updateService();
    void updatePoint(size_t cluster);
    void scheduleCompletions();
    size_t clusterOf(Task task) const {
        return task == Task::App ? mDevice.appCluster : mDevice.compositorCluster;
    }
    int64_t vsyncNs(int64_t index) const { return kStartNs + index * mPeriodNs; }

    const Scenario& mScenario;
    const Device& mDevice;
    const Workload& mWorkload;
    const int64_t mPeriodNs;
    const int64_t mEndNs;
    Library* const mLibrary;
    Observer& mObserver;

    std::array<int64_t, kSourceCount> mTimesNs;
    int64_t mNowNs = kStartNs;
    int32_t mEventsAtNow = 0;
    std::vector<Cluster> mClusters;
    Service mService;
    std::deque<SentHint> mSentHints;
    BufferQueue mBuffers;
    WorkSource mWork;
    BurstSource mBursts;
    int64_t mVsyncIndex = -1;
    int64_t mFrameIndex = 0;  // of the next frame, unless frames begin at vsyncs
    bool mHasTick = false;    // a frame that begins at vsyncs waits for a free buffer
    std::optional<Frame> mAppFrame;
    std::optional<Frame> mComposedFrame;
    double mFrameMhz = 0.0;  // mean during the last frame
    int32_t mPeakDepth = 0;
};

}  // namespace brevold::sim
