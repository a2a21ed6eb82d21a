#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "replay/missed_refreshes.h"
#include "sim/observer.h"

namespace brevold::sim {

/** The figures of one run. */
enum class Metric : uint8_t {
    AppPowerMw,         // of the application's cluster
    CompositorPowerMw,  // of the compositor's cluster; not a number if that is the same one
    TotalPowerMw,       // of both
    EnergyRatio,        // energy of both, as a share of the energy without the library
    AppEnergyRatio,     // the same for the application's cluster alone
    FrameEnergyMj,      // energy of both per frame shown
    FramesPerSecond,    // shown
    MissedPerMinute,
    IntervalMedianMs,  // from queueing to queueing, without idle gaps
    IntervalP99Ms,
    QueueLatencyMs,  // mean, from queueing to latch
    ShowLatencyMs,   // mean, from the start of a frame to its vsync on the display
    FrameTimeMs,     // mean, from the start of a frame to its queueing
    FrameTimeSdMs,
    FrameTimeCorrelation,  // of neighbouring frames
    DownShare,             // of the time
    DownScale,             // mean while a DOWN hint is in effect
    BoostShare,
    HintsPerSecond,
    RecordedLatchShare,  // of the frames, latched at the vsync at which they were recorded
    LateLatchShare,      // of the frames, latched later than that
    Mode0Share,          // of the time; modes 0 to 5 follow each other
    Mode1Share,
    Mode2Share,
    Mode3Share,
    Mode4Share,
    Mode5Share,
};
constexpr size_t kMetricCount = 27;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/** By metric; not a number where a metric has no value. */
using Metrics = std::array<double, kMetricCount>;

constexpr double& at(Metrics& metrics, Metric metric) {
    return metrics[static_cast<size_t>(metric)];
}
constexpr double at(const Metrics& metrics, Metric metric) {
    return metrics[static_cast<size_t>(metric)];
}

/** Collects the metrics of a run after its warm-up, in memory that does not grow with time. */
class MetricsObserver : public Observer {
  public:
    explicit MetricsObserver(int64_t periodNs);

    /** All but power and energy, which the clusters know. Call it after the end. */
    Metrics metrics() const;
    int64_t framesShown() const { return mFramesShown; }

    void onMeasurementStart(int64_t nowNs) override;
    void onQueue(int64_t nowNs, const Frame& frame, int32_t depth) override;
    void onLatch(int64_t nowNs, const Frame& frame, int32_t depth) override;
    void onShow(int64_t vsyncNs, const Frame& frame) override;
    void onHint(const host::Hint& hint) override;
    void onService(int64_t nowNs, const Service& service) override;
    void onMode(int64_t nowNs, std::optional<int32_t> mode) override;
    void onEnd(int64_t nowNs) override;

  private:
    double intervalPercentileMs(double share) const;
    void closeService(int64_t nowNs);
    void closeMode(int64_t nowNs);

    bool mIsMeasuring = false;
    int64_t mStartNs = 0;
    int64_t mEndNs = 0;

    const int64_t mPeriodNs;
    replay::MissedRefreshes mMissedRefreshes;
    int64_t mMissed = 0;
    int64_t mFramesShown = 0;
    int64_t mFramesLatched = 0;
    int64_t mRecordedLatches = 0;  // of frames with a recorded vsync
    int64_t mEqualLatches = 0;     // at that vsync
    int64_t mLateLatches = 0;
    int64_t mQueueLatencyNs = 0;
    int64_t mShowLatencyNs = 0;

    int64_t mLastQueueNs = 0;
    int64_t mIntervals = 0;
    std::vector<int32_t> mIntervalCounts;  // by length

    // Sums over frame times x in ms, from the mean of which the first is near.
    int64_t mFrames = 0;
    double mFirstMs = 0.0;
    double mLastMs = 0.0;
    double mSum = 0.0;
    double mSquares = 0.0;
    double mProducts = 0.0;

    int64_t mHints = 0;
    int64_t mServiceSinceNs = 0;
    std::optional<double> mDownScale;
    bool mIsBoosted = false;
    int64_t mDownNs = 0;
    int64_t mBoostNs = 0;
    double mScaledNs = 0.0;

    int64_t mModeSinceNs = 0;
    std::optional<int32_t> mMode;
    std::array<int64_t, 6> mModeNs = {};
};

}  // namespace brevold::sim
