#include "report/frame_figures.h"

#include <numeric>
#include <utility>
#include <vector>

#include "base/percentile.h"
#include "base/time_units.h"
#include "brevold/frame_rate.h"
#include "replay/missed_refreshes.h"

namespace brevold::report {

namespace {

class FigureBuilder {
  public:
    FigureBuilder(const trace::Timeline& timeline, const replay::TimeWindow& window)
          : mTimeline(timeline), mWindow(window), mDepths(timeline.layers.size()) {}

    FrameFigures build() {
        setFocus(mTimeline.startNs, mTimeline.focusedLayer);
        for (const trace::TimelineEvent& event : mTimeline.events)
            add(event);
        endGap(mTimeline.endNs);
        const double sumS =
                toSeconds(std::accumulate(mIntervals.begin(), mIntervals.end(), int64_t{0}));
        mFigures.intervals = static_cast<int32_t>(mIntervals.size());
        if (sumS > 0.0) mFigures.meanRateHz = mFigures.intervals / sumS;
        mFigures.medianNs = percentile(mIntervals, 50.0);
        mFigures.p95Ns = percentile(mIntervals, 95.0);
        mFigures.p99Ns = percentile(mIntervals, 99.0);
        return mFigures;
    }

  private:
    void add(const trace::TimelineEvent& event) {
        using Kind = trace::TimelineEvent::Kind;
        if (event.kind == Kind::Period) {
            mPeriodNs = event.periodNs;
        } else if (event.kind == Kind::Focus) {
            endGap(event.timeNs);
            setFocus(event.timeNs, static_cast<size_t>(event.layer));
        } else if (event.kind == Kind::Frame || event.kind == Kind::Depth) {
            const auto layer = static_cast<size_t>(event.layer);
            const int32_t before = std::exchange(mDepths[layer], event.depth);
            if (layer != mFocus) return;
            if (event.kind == Kind::Frame) {
                addFrame(event.timeNs);
            } else if (event.depth < before) {
                addLatch(event.timeNs);
            }
        }
    }

    void setFocus(int64_t timeNs, size_t layer) {
        mFocus = layer;
        mGapStartNs = timeNs;
        mHasFrame = false;
        mMissed = {};
    }

    void addFrame(int64_t timeNs) {
        const int64_t intervalNs = timeNs - mGapStartNs;
        if (mHasFrame && !android::isIdleGap(intervalNs) && mWindow.contains(timeNs)) {
            mIntervals.push_back(intervalNs);
        }
        endGap(timeNs);
        mHasFrame = true;
    }

    void endGap(int64_t timeNs) {
        const int64_t startNs = std::exchange(mGapStartNs, timeNs);
        if (!android::isIdleGap(timeNs - startNs)) return;
        mFigures.idleNs += mWindow.clamp(timeNs) - mWindow.clamp(startNs);
    }

    void addLatch(int64_t timeNs) {
        const int64_t missed = mMissed.latch(timeNs, mPeriodNs);
        if (mWindow.contains(timeNs)) mFigures.missedRefreshes += missed;
    }

    const trace::Timeline& mTimeline;
    const replay::TimeWindow& mWindow;
    FrameFigures mFigures;
    std::vector<int32_t> mDepths;  // of each layer
    std::vector<int64_t> mIntervals;
    replay::MissedRefreshes mMissed;
    size_t mFocus = 0;
    int64_t mPeriodNs = 0;
    int64_t mGapStartNs = 0;  // the last frame, or the start of the focus
    bool mHasFrame = false;
};

}  // namespace

FrameFigures frameFigures(const trace::Timeline& timeline, const replay::TimeWindow& window) {
    return FigureBuilder(timeline, window).build();
}

}  // namespace brevold::report
