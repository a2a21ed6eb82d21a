#include "sim/recorded_frames.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <utility>

#include "base/error.h"

namespace brevold::sim {

namespace {

using trace::TimelineEvent;

/** Collects the frames of one layer during one refresh period. */
class FrameCollector {
  public:
    explicit FrameCollector(int64_t periodNs) : mPeriodNs(periodNs) {}

    int64_t periodNs() const { return mPeriodNs; }
    size_t size() const { return mFrames.size(); }

    void queue(int64_t timeNs, int32_t depth) {
        mDepth = depth;
        mWaiting.push_back(mFrames.size());
        mFrames.push_back({timeNs, depth});
    }

    void changeDepth(int64_t timeNs, int32_t depth) {
        const bool isLatch = depth < std::exchange(mDepth, depth);
        if (!isLatch) return;
        mLatchesNs.push_back(timeNs);
        for (size_t i = mFrames.size(); i-- > 0 && mFrames[i].nextLatchNs == kNever;)
            mFrames[i].nextLatchNs = timeNs;
        for (; mWaiting.size() > static_cast<size_t>(depth); mWaiting.pop_front())
            mFrames[mWaiting.front()].latchedNs = timeNs;
    }

    QueuedFrames take(std::string layer) {
        return {std::move(layer), mPeriodNs, std::move(mFrames), std::move(mLatchesNs)};
    }

  private:
    int64_t mPeriodNs;
    int32_t mDepth = 0;
    std::vector<QueuedFrame> mFrames;
    std::vector<int64_t> mLatchesNs;
    std::deque<size_t> mWaiting;
};

int64_t divideDown(int64_t dividend, int64_t divisor) {
    const int64_t quotient = dividend / divisor;
    return dividend % divisor < 0 ? quotient - 1 : quotient;
}

}  // namespace

QueuedFrames queuedFrames(const trace::Timeline& timeline, const std::string& name) {
    std::vector<FrameCollector> collectors;
    for (const TimelineEvent& event : timeline.events) {
        if (event.kind == TimelineEvent::Kind::Period) {
            if (collectors.empty() || collectors.back().periodNs() != event.periodNs) {
                collectors.emplace_back(event.periodNs);
            }
        } else if (static_cast<size_t>(event.layer) != timeline.focusedLayer) {
            continue;
        } else if (event.kind == TimelineEvent::Kind::Frame) {
            collectors.back().queue(event.timeNs, event.depth);
        } else if (event.kind == TimelineEvent::Kind::Depth) {
            collectors.back().changeDepth(event.timeNs, event.depth);
        }
    }
    const auto most = std::max_element(
            collectors.begin(), collectors.end(),
            [](const FrameCollector& a, const FrameCollector& b) { return a.size() < b.size(); });
    const std::string& layer = timeline.layers[timeline.focusedLayer].name;
    if (most->size() < 2) {
        throw InputError(fmt::format(
                "{}: expected two or more frames of layer {} at one refresh rate", name, layer));
    }
    return most->take(layer);
}

RecordedVsyncs::RecordedVsyncs(const QueuedFrames& frames, int64_t latchNs)
      : mPeriodNs(frames.periodNs), mLatchNs(latchNs) {
    for (const int64_t timeNs : frames.latchesNs) {
        if (mLatches.empty()) mLatches.push_back({timeNs, 0});
        const Latch last = mLatches.back();
        const int64_t refreshes = (timeNs - last.timeNs + mPeriodNs / 2) / mPeriodNs;
        if (refreshes > 0) mLatches.push_back({timeNs, last.index + refreshes});
    }
    if (mLatches.empty()) mLatches.push_back({frames.beginNs(), 0});
}

const RecordedVsyncs::Latch& RecordedVsyncs::lastLatch(int64_t timeNs) const {
    const auto next =
            std::upper_bound(mLatches.begin(), mLatches.end(), timeNs,
                             [](int64_t ns, const Latch& latch) { return ns < latch.timeNs; });
    return next == mLatches.begin() ? mLatches.front() : *std::prev(next);
}

int64_t RecordedVsyncs::indexOf(int64_t latchedNs) const {
    return lastLatch(latchedNs).index;
}

int64_t RecordedVsyncs::simulated(int64_t timeNs) const {
    const Latch& latch = lastLatch(timeNs);
    return latch.index * mPeriodNs + mLatchNs + timeNs - latch.timeNs;
}

int64_t RecordedVsyncs::firstLatchAt(int64_t simulatedNs) const {
    return -divideDown(mLatchNs - simulatedNs, mPeriodNs);
}

}  // namespace brevold::sim
