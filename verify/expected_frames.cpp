#include "verify/expected_frames.h"

#include <limits>

#include "brevold/frame_rate.h"

namespace brevold::verify {

namespace {

using trace::TimelineEvent;

class Expecter {
  public:
    Expecter(const trace::Timeline& timeline, const replay::Recording& replayed)
          : mTimeline(timeline),
            mReplayed(replayed),
            mFocus(timeline.focusedLayer),
            mTracked(mFocus),
            mLayers(timeline.layers.size()) {
        mExpectation.periodKnownFromNs = timeline.startNs;
        for (const trace::TraceWarning& warning : timeline.warnings) {
            if (warning.kind != trace::TraceWarning::Kind::UnknownPeriod) continue;
            mExpectation.periodKnownFromNs += warning.fromNs;
        }
    }

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
                if (mStampNs != 0 && android::isIdleGap(event.timeNs - mStampNs)) {
                    mExpectation.modeResetsNs.push_back(event.timeNs);
                }
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
        const std::vector<replay::ModeChange>& modes = mReplayed.modes;
        while (mNextMode < modes.size() && modes[mNextMode].timeNs <= timeNs)
            mMode = modes[mNextMode++].mode;
        return mMode;
    }

    /** The layer in focus has a frame. Returns true if the replay compares its mode. */
    bool nextIsModeTested() {
        if (mNextFrame == mReplayed.frames.size()) return false;
        const replay::FrameOutcome outcome = mReplayed.frames[mNextFrame++].outcome;
        return isRequest(outcome) || outcome >= replay::FrameOutcome::UnclassifiedMode;
    }

    void addFrame(const TimelineEvent& event) {
        const auto layer = static_cast<size_t>(event.layer);
        LayerState& state = mLayers[layer];
        state.depth = event.depth;
        const bool isFocused = layer == mFocus;
        if (isFocused && layer != mTracked) {
            mExpectation.modeResetsNs.push_back(event.timeNs);
            mTracked = layer;
        }
        ExpectedFrame frame = {event.timeNs,
                               event.tid,
                               event.layer,
                               isFocused,
                               event.depth,
                               state.frameNs,
                               mPeriodNs,
                               modeAt(event.timeNs),
                               isFocused && nextIsModeTested(),
                               mStampNs,
                               mPreviousStampNs,
                               mVsyncNs};
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
    const replay::Recording& mReplayed;
    Expectation mExpectation;
    size_t mFocus;
    size_t mTracked;
    std::vector<LayerState> mLayers;
    size_t mNextMode = 0;
    size_t mNextFrame = 0;
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

Expectation expect(const trace::Timeline& timeline, const replay::Recording& replayed) {
    return Expecter(timeline, replayed).expect();
}

}  // namespace brevold::verify
