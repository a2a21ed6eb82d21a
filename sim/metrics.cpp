#include "sim/metrics.h"

#include <algorithm>
#include <cmath>

#include "base/time_units.h"
#include "brevold/frame_rate.h"

namespace brevold::sim {

namespace {

constexpr int64_t kIntervalStepNs = 10'000;
constexpr double kStepsPerMs = 1e6 / kIntervalStepNs;
// Frame times that vary by less are constant.
constexpr double kMinDeviationMs = 1e-5;

double ratio(double dividend, int64_t divisor) {
    return divisor == 0 ? kNotANumber : dividend / static_cast<double>(divisor);
}

double ratio(int64_t dividend, int64_t divisor) {
    return ratio(static_cast<double>(dividend), divisor);
}

}  // namespace

MetricsObserver::MetricsObserver(int64_t periodNs)
      : mPeriodNs(periodNs), mIntervalCounts(android::kIdleGapNs / kIntervalStepNs) {}

Metrics MetricsObserver::metrics() const {
    const int64_t measuredNs = mEndNs - mStartNs;
    const double seconds = toSeconds(measuredNs);
    Metrics metrics;
    metrics.fill(kNotANumber);
    at(metrics, Metric::FramesPerSecond) = static_cast<double>(mFramesShown) / seconds;
    at(metrics, Metric::MissedPerMinute) = static_cast<double>(mMissed) / seconds * 60.0;
    at(metrics, Metric::IntervalMedianMs) = intervalPercentileMs(0.5);
    at(metrics, Metric::IntervalP99Ms) = intervalPercentileMs(0.99);
    at(metrics, Metric::QueueLatencyMs) = ratio(mQueueLatencyNs, mFramesLatched) / 1e6;
    at(metrics, Metric::ShowLatencyMs) = ratio(mShowLatencyNs, mFramesShown) / 1e6;
    at(metrics, Metric::DownShare) = ratio(mDownNs, measuredNs);
    at(metrics, Metric::DownScale) = ratio(mScaledNs, mDownNs);
    at(metrics, Metric::BoostShare) = ratio(mBoostNs, measuredNs);
    at(metrics, Metric::RecordedLatchShare) = ratio(mEqualLatches, mRecordedLatches);
    at(metrics, Metric::HintsPerSecond) = static_cast<double>(mHints) / seconds;

    const double mean = ratio(mSum, mFrames);
    at(metrics, Metric::FrameTimeMs) = mFirstMs + mean;
    if (mFrames > 1) {
        const double variance = std::max(ratio(mSquares, mFrames) - mean * mean, 0.0);
        const double deviation = std::sqrt(variance);
        at(metrics, Metric::FrameTimeSdMs) = deviation;
        if (deviation > kMinDeviationMs) {
            at(metrics, Metric::FrameTimeCorrelation) =
                    (ratio(mProducts, mFrames - 1) - mean * mean) / variance;
        }
    }
    if (mMode) {
        for (size_t mode = 0; mode < mModeNs.size(); ++mode) {
            metrics[static_cast<size_t>(Metric::Mode0Share) + mode] =
                    ratio(mModeNs[mode], measuredNs);
        }
    }
    return metrics;
}

void MetricsObserver::onMeasurementStart(int64_t nowNs) {
    mIsMeasuring = true;
    mStartNs = mServiceSinceNs = mModeSinceNs = nowNs;
}

void MetricsObserver::onQueue(int64_t nowNs, const Frame& frame, int32_t /*depth*/) {
    const int64_t intervalNs = nowNs - mLastQueueNs;
    mLastQueueNs = nowNs;
    if (!mIsMeasuring) return;
    if (!android::isIdleGap(intervalNs)) {
        ++mIntervalCounts[static_cast<size_t>(intervalNs / kIntervalStepNs)];
        ++mIntervals;
    }
    const double frameMs = toMs(nowNs - frame.beginNs);
    if (mFrames++ == 0) mFirstMs = mLastMs = frameMs;
    const double x = frameMs - mFirstMs;
    mSum += x;
    mSquares += x * x;
    mProducts += x * (mLastMs - mFirstMs);
    mLastMs = frameMs;
}

void MetricsObserver::onLatch(int64_t nowNs, const Frame& frame, int32_t /*depth*/) {
    const int64_t missed = mMissedRefreshes.latch(nowNs, mPeriodNs);
    if (!mIsMeasuring) return;
    if (frame.recordedVsyncNs != 0) {
        ++mRecordedLatches;
        const int64_t sinceVsyncNs = nowNs - frame.recordedVsyncNs;
        if (sinceVsyncNs >= 0 && sinceVsyncNs < mPeriodNs) ++mEqualLatches;
    }
    mMissed += missed;
    ++mFramesLatched;
    mQueueLatencyNs += nowNs - frame.queuedNs;
}

void MetricsObserver::onShow(int64_t vsyncNs, const Frame& frame) {
    if (!mIsMeasuring) return;
    ++mFramesShown;
    mShowLatencyNs += vsyncNs - frame.beginNs;
}

void MetricsObserver::onHint(const host::Hint& /*hint*/) {
    if (mIsMeasuring) ++mHints;
}

void MetricsObserver::onService(int64_t nowNs, const Service& service) {
    closeService(nowNs);
    mDownScale = service.downScale();
    mIsBoosted = service.isBoosted();
}

void MetricsObserver::onMode(int64_t nowNs, std::optional<int32_t> mode) {
    closeMode(nowNs);
    mMode = mode;
}

void MetricsObserver::onEnd(int64_t nowNs) {
    closeService(nowNs);
    closeMode(nowNs);
    mEndNs = nowNs;
}

double MetricsObserver::intervalPercentileMs(double share) const {
    if (mIntervals == 0) return kNotANumber;
    const auto rank = static_cast<int64_t>(std::ceil(share * static_cast<double>(mIntervals)));
    int64_t count = 0;
    size_t step = 0;
    while ((count += mIntervalCounts[step]) < rank)
        ++step;
    return (static_cast<double>(step) + 0.5) / kStepsPerMs;
}

void MetricsObserver::closeService(int64_t nowNs) {
    const int64_t elapsedNs = nowNs - mServiceSinceNs;
    mServiceSinceNs = nowNs;
    if (!mIsMeasuring) return;
    if (mIsBoosted) mBoostNs += elapsedNs;
    if (!mDownScale) return;
    mDownNs += elapsedNs;
    mScaledNs += *mDownScale * static_cast<double>(elapsedNs);
}

void MetricsObserver::closeMode(int64_t nowNs) {
    const int64_t elapsedNs = nowNs - mModeSinceNs;
    mModeSinceNs = nowNs;
    if (mIsMeasuring && mMode) mModeNs[static_cast<size_t>(*mMode)] += elapsedNs;
}

}  // namespace brevold::sim
