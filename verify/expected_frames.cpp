#include "verify/expected_frames.h"

#include <limits>

#include "brevold/frame_rate.h"

namespace brevold::verify {

namespace {

using trace::TimelineEvent;

class Expecter {
  public:
    Expecter(const trace::Timeline& timeline, const std::vector<replay::ModeChange>& modes)
          : mTimeline(timeline),
            mModes(modes),
            mFocus(timeline.focusedLayer),
            mLayers(timeline.layers.size()) {}

    Expectation expect() {
        for (const TimelineEvent& event : mTimeline.events)
            apply(event);
        return std::move(mExpectation);
    }

  private:
    struct LayerState {
        int32_t depth = 0;
        std::optional<int64_t> frameNs;
        // Frames taken by the latest composition that has ended, and since its end.
        int32_t latched = 0;
        int32_t latching = 0;
        std::vector<size_t> waiting;  // its frames since then
    };

    void apply(const TimelineEvent& event) {
        switch (event.kind) {
            case TimelineEvent::Kind::Period:
                mPeriodNs = event.periodNs;
                break;
            case TimelineEvent::Kind::Frame:
                addFrame(event);
                break;
            case TimelineEvent::Kind::Depth:
                changeDepth(event);
                break;
            case TimelineEvent::Kind::CompositionBegin:
                mPreviousStampNs = mStampNs;
                mStampNs = event.timeNs;
                mExpectation.compositionsNs.push_back(event.timeNs);
                break;
            case TimelineEvent::Kind::CompositionEnd:
                endComposition();
                break;
            case TimelineEvent::Kind::Vsync:
                mVsyncNs = event.timeNs;
                break;
            case TimelineEvent::Kind::Focus:
                mFocus = static_cast<size_t>(event.layer);
                break;
        }
    }

    int32_t modeAt(int64_t timeNs) {
        while (mNextMode < mModes.size() && mModes[mNextMode].timeNs <= timeNs)
            mMode = mModes[mNextMode++].mode;
        return mMode;
    }

    void addFrame(const TimelineEvent& event) {
        const auto layer = static_cast<size_t>(event.layer);
        LayerState& state = mLayers[layer];
        state.depth = event.depth;
        ExpectedFrame frame = {event.timeNs, event.tid,        event.layer, layer == mFocus,
                               event.depth,  state.frameNs,    mPeriodNs,   modeAt(event.timeNs),
                               mStampNs,     mPreviousStampNs, mVsyncNs};
        frame.latchedBefore = state.latching > 0 ? state.latching : state.latched;
        state.frameNs = event.timeNs;
        state.waiting.push_back(mExpectation.frames.size());
        mExpectation.frames.push_back(frame);
    }

    void changeDepth(const TimelineEvent& event) {
        LayerState& state = mLayers[static_cast<size_t>(event.layer)];
        const int32_t taken = state.depth - event.depth;
        state.depth = event.depth;
        if (taken <= 0) return;
        state.latching += taken;
        for (const size_t frame : state.waiting)
            mExpectation.frames[frame].latchedAfter += taken;
    }

    void endComposition() {
        for (LayerState& state : mLayers) {
            state.latched = state.latching;
            state.latching = 0;
            state.waiting.clear();
        }
    }

    const trace::Timeline& mTimeline;
    const std::vector<replay::ModeChange>& mModes;
    Expectation mExpectation;
    size_t mFocus;
    std::vector<LayerState> mLayers;
    size_t mNextMode = 0;
    int32_t mMode = android::kModeUnclassified;
    int64_t mPeriodNs = 0;
    int64_t mStampNs = 0;
    int64_t mPreviousStampNs = 0;
    int64_t mVsyncNs = 0;
};

}  // namespace

bool isSameTime(int64_t aNs, int64_t bNs) {
    int64_t distanceNs;
    return !__builtin_sub_overflow(aNs, bNs, &distanceNs) && distanceNs <= kTimeToleranceNs &&
           distanceNs >= -kTimeToleranceNs;
}

int64_t timeBefore(int64_t timeNs, int64_t lengthNs) {
    using Limits = std::numeric_limits<int64_t>;
    int64_t before;
    if (!__builtin_sub_overflow(timeNs, lengthNs, &before)) return before;
    return lengthNs < 0 ? Limits::max() : Limits::min();
}

Expectation expect(const trace::Timeline& timeline, const std::vector<replay::ModeChange>& modes) {
    return Expecter(timeline, modes).expect();
}

}  // namespace brevold::verify
