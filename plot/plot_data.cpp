#include "plot/plot_data.h"

#include <algorithm>
#include <utility>

#include "base/time_units.h"
#include "replay/hint_span.h"
#include "replay/missed_refreshes.h"

namespace brevold::plot {

namespace {

/** Times of a trace as seconds, cut to a window. */
class WindowClock {
  public:
    WindowClock(int64_t startNs, const replay::TimeWindow& window)
          : mStartNs(startNs), mWindow(window) {}

    const replay::TimeWindow& window() const { return mWindow; }
    double seconds(int64_t timeNs) const { return toSeconds(mWindow.clamp(timeNs) - mStartNs); }

    /** Adds the part of a span that is in the window. */
    void add(int64_t fromNs, int64_t toNs, double value, PlotSpans* spans) const {
        if (fromNs > mWindow.endNs || toNs < mWindow.beginNs) return;
        spans->push_back({seconds(fromNs), seconds(toNs), value});
    }

  private:
    const int64_t mStartNs;
    const replay::TimeWindow& mWindow;
};

/** Turns changes of a value into spans. */
class StepBuilder {
  public:
    explicit StepBuilder(const WindowClock& clock) : mClock(clock) {}

    void set(int64_t timeNs, double value) {
        if (mIsSet && value == mValue) return;
        endSpan(timeNs);
        mFromNs = timeNs;
        mValue = value;
        mIsSet = true;
    }

    /** Returns the spans up to the end of the window. */
    PlotSpans finish() {
        if (mIsSet) mClock.add(mFromNs, mClock.window().endNs, mValue, &mSpans);
        return std::move(mSpans);
    }

  private:
    void endSpan(int64_t timeNs) {
        const bool isInWindow = timeNs > mClock.window().beginNs;
        if (mIsSet && isInWindow && timeNs > mFromNs) mClock.add(mFromNs, timeNs, mValue, &mSpans);
    }

    const WindowClock& mClock;
    PlotSpans mSpans;
    bool mIsSet = false;
    int64_t mFromNs = 0;
    double mValue = 0;
};

/** The curves of the trace itself. */
class TraceCurves {
  public:
    TraceCurves(const trace::Timeline& timeline, const WindowClock& clock)
          : mTimeline(timeline),
            mClock(clock),
            mLayerDepths(timeline.layers.size()),
            mDepths(clock),
            mPeriods(clock) {}

    PlotData build() {
        mData.fromS = mClock.seconds(mClock.window().beginNs);
        mData.toS = mClock.seconds(mClock.window().endNs);
        setFocus(mTimeline.startNs, mTimeline.focusedLayer);
        for (const trace::TimelineEvent& event : mTimeline.events) {
            if (event.timeNs > mClock.window().endNs) break;
            add(event);
        }
        mData.depths = mDepths.finish();
        mData.periodsMs = mPeriods.finish();
        return std::move(mData);
    }

  private:
    void add(const trace::TimelineEvent& event) {
        using Kind = trace::TimelineEvent::Kind;
        const auto layer = static_cast<size_t>(event.layer);
        if (event.kind == Kind::Period) {
            mPeriodNs = event.periodNs;
            mPeriods.set(event.timeNs, toMs(event.periodNs));
        } else if (event.kind == Kind::Focus) {
            setFocus(event.timeNs, layer);
        } else if (event.kind == Kind::Frame || event.kind == Kind::Depth) {
            const int32_t lastDepth = std::exchange(mLayerDepths[layer], event.depth);
            if (layer != mFocus) return;
            mDepths.set(event.timeNs, event.depth);
            if (event.kind == Kind::Frame) {
                addFrame(event.timeNs);
            } else if (event.depth < lastDepth) {
                addLatch(event.timeNs);
            }
        }
    }

    void setFocus(int64_t timeNs, size_t layer) {
        mFocus = layer;
        mLastFrameNs.reset();
        mMissed = {};
        mDepths.set(timeNs, mLayerDepths[layer]);
        std::vector<std::string>& names = mData.layers;
        if (timeNs <= mClock.window().beginNs) names.clear();
        const std::string& name = mTimeline.layers[layer].name;
        if (std::count(names.begin(), names.end(), name) == 0) names.push_back(name);
    }

    void addFrame(int64_t timeNs) {
        const std::optional<int64_t> lastNs = std::exchange(mLastFrameNs, timeNs);
        if (!mClock.window().contains(timeNs)) return;
        const double timeS = mClock.seconds(timeNs);
        if (mData.frames++ == 0) mData.firstFrameS = timeS;
        mData.lastFrameS = timeS;
        if (lastNs) mData.frameIntervalsMs.push_back({timeS, toSeconds(timeNs - *lastNs) * 1e3});
    }

    void addLatch(int64_t timeNs) {
        const int64_t missed = mMissed.latch(timeNs, mPeriodNs);
        if (missed == 0 || !mClock.window().contains(timeNs)) return;
        mData.missedRefreshes.push_back({mClock.seconds(timeNs), static_cast<double>(missed)});
    }

    const trace::Timeline& mTimeline;
    const WindowClock& mClock;
    PlotData mData = {};
    std::vector<int32_t> mLayerDepths;
    StepBuilder mDepths;
    StepBuilder mPeriods;
    size_t mFocus = 0;
    int64_t mPeriodNs = 0;
    std::optional<int64_t> mLastFrameNs;
    replay::MissedRefreshes mMissed;
};

void addHint(const replay::HintSpan& span, const WindowClock& clock, ReplayCurves* curves) {
    const host::Hint& hint = span.hint;
    const int32_t sent = clock.window().contains(hint.timeNs) ? 1 : 0;
    switch (hint.kind) {
        case host::HintKind::Down:
            curves->downCount += sent;
            clock.add(hint.timeNs, span.endNs, hint.scale, &curves->downs);
            break;
        case host::HintKind::Up:
            curves->upCount += sent;
            clock.add(hint.timeNs, span.endNs, hint.scale, &curves->ups);
            break;
        case host::HintKind::JankBoost:
            curves->boostCount += sent;
            clock.add(hint.timeNs, span.endNs, hint.scale, &curves->boosts);
            break;
        case host::HintKind::RefreshRate:
            if (sent == 0) break;
            curves->rateHintsHz.push_back(
                    {clock.seconds(hint.timeNs), static_cast<double>(hint.type)});
            break;
        case host::HintKind::Release:
            break;
    }
}

/** Returns the refreshes that start at `timesNs`, each one period long. */
PlotSpans refreshesAt(const std::vector<int64_t>& timesNs, const trace::Timeline& timeline,
                      const WindowClock& clock) {
    PlotSpans spans;
    int64_t periodNs = 0;
    auto event = timeline.events.begin();
    for (const int64_t timeNs : timesNs) {
        for (; event != timeline.events.end() && event->timeNs <= timeNs; ++event) {
            if (event->kind == trace::TimelineEvent::Kind::Period) periodNs = event->periodNs;
        }
        if (clock.window().contains(timeNs)) clock.add(timeNs, timeNs + periodNs, 1, &spans);
    }
    return spans;
}

ReplayCurves replayCurves(const trace::Timeline& timeline, const replay::Recording& recording,
                          const WindowClock& clock) {
    ReplayCurves curves;
    for (const replay::HintSpan& span : replay::hintSpans(recording.hints, timeline.endNs))
        addHint(span, clock, &curves);
    StepBuilder modes(clock);
    for (const replay::ModeChange& change : recording.modes) {
        if (change.timeNs <= clock.window().endNs) modes.set(change.timeNs, change.mode);
    }
    curves.modes = modes.finish();
    curves.verdicts = refreshesAt(recording.verdictTimesNs, timeline, clock);
    return curves;
}

}  // namespace

PlotData plotData(const trace::Timeline& timeline,
                  const std::vector<const replay::Recording*>& recordings,
                  const replay::TimeWindow& window) {
    const WindowClock clock(timeline.startNs, window);
    PlotData data = TraceCurves(timeline, clock).build();
    for (const replay::Recording* recording : recordings)
        data.replays.push_back(replayCurves(timeline, *recording, clock));
    return data;
}

}  // namespace brevold::plot
