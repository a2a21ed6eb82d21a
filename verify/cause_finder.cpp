#include "verify/cause_finder.h"

#include <algorithm>

#include "brevold/frame_rate.h"

namespace brevold::verify {

namespace {

/** Decisions and boosts this close to a frame show the state of the device. */
constexpr int64_t kNearNs = 100'000'000;
/** Decisions for other layers, and later decisions for the same layer, may be rare. */
constexpr int64_t kFarNs = 1'000'000'000;

/** The index of the first frame at or after a time. */
size_t indexAt(const std::vector<ExpectedFrame>& frames, int64_t timeNs) {
    const auto frame = std::lower_bound(
            frames.begin(), frames.end(), timeNs,
            [](const ExpectedFrame& expected, int64_t t) { return expected.timeNs < t; });
    return static_cast<size_t>(frame - frames.begin());
}

bool isPeriodOf(const DecisionLabel& label, const ExpectedFrame& frame) {
    const std::optional<int64_t> periodNs = reportedPeriodNs(label);
    return periodNs && android::refreshBandOf(*periodNs) == android::refreshBandOf(frame.periodNs);
}

}  // namespace

CauseFinder::CauseFinder(const std::vector<ExpectedFrame>& frames, const Pairing& pairing,
                         const ModeEvidence& modes, const std::vector<int64_t>& boostsNs)
      : mFrames(frames),
        mPairing(pairing),
        mModes(modes),
        mBoostsNs(boostsNs),
        mDepths(depthFigure(), frames, pairing),
        mStamps(stampFigure(), frames, pairing),
        mDecidedFocused(1),
        mDecidedOther(1) {
    for (size_t i = 0; i < frames.size(); ++i) {
        const int64_t count = recordedLabel(i) == nullptr ? 0 : 1;
        const int64_t focused = frames[i].isFocused ? count : 0;
        mDecidedFocused.push_back(mDecidedFocused.back() + focused);
        mDecidedOther.push_back(mDecidedOther.back() + count - focused);
    }
}

const DecisionLabel* CauseFinder::recordedLabel(size_t frame) const {
    const DecisionMark* const mark = mPairing.frames[frame].recorded;
    return mark == nullptr ? nullptr : &mark->label;
}

CauseSet CauseFinder::ofExtra(const ExtraDecision& extra) const {
    if (!followsRule(extra.mark->label)) return Cause::OtherVersion;
    if (extra.frame && !mFrames[*extra.frame].isFocused) return Cause::OtherLayer;
    return Cause::ReportedTwice;
}

CauseSet CauseFinder::ofFrame(size_t frame) const {
    const DecisionLabel* const label = recordedLabel(frame);
    return label == nullptr ? ofSilence(frame) : ofLabel(frame, *label);
}

// The label shows which figure differs.
CauseSet CauseFinder::ofLabel(size_t frame, const DecisionLabel& label) const {
    const ExpectedFrame& expected = mFrames[frame];
    if (!followsRule(label)) return Cause::OtherVersion;
    if (!expected.isFocused) return Cause::OtherLayer;
    CauseSet causes = ofInterval(frame, label);
    if (causes.isEmpty()) causes = mDepths.causesOf(expected, label);
    if (causes.isEmpty()) causes = mStamps.causesOf(expected, label);
    if (!causes.isEmpty()) return causes;
    if (!isPeriodOf(label, expected)) return Cause::PeriodOfOtherDisplay;
    if (label.mode != expected.mode) return mModes.causeAt(expected.timeNs);
    // Small differences of the times are left. They may also move a scale across the threshold.
    return expected.decision || label.direction == Direction::Up ? Cause::QueueTimes
                                                                 : Cause::Unexplained;
}

CauseSet CauseFinder::ofInterval(size_t frame, const DecisionLabel& label) const {
    const ExpectedFrame& expected = mFrames[frame];
    if (!expected.previousNs) return {};
    const int64_t queuedNs = expected.timeNs;
    if (isSameTime(label.intervalNs, queuedNs - *expected.previousNs)) return {};
    const int64_t recordedPreviousNs = timeBefore(queuedNs, label.intervalNs);
    if (isSameTime(recordedPreviousNs, queuedNs)) return Cause::ReportedTwice;
    const size_t first = indexAt(mFrames, timeBefore(recordedPreviousNs, kTimeToleranceNs));
    for (size_t i = first; i < frame && isSameTime(mFrames[i].timeNs, recordedPreviousNs); ++i) {
        if (mFrames[i].layer == expected.layer) return Cause::NotReported;
    }
    return Cause::QueueTimes;
}

// Only the decisions around the frame show why there is none for it.
CauseSet CauseFinder::ofSilence(size_t frame) const {
    const ExpectedFrame& expected = mFrames[frame];
    const bool isLayerSilent = !hasDecisions(mDecidedFocused, expected.timeNs, kNearNs);
    if (isLayerSilent && hasDecisions(mDecidedOther, expected.timeNs, kFarNs)) {
        return Cause::OtherLayer;
    }
    const std::optional<int32_t> mode = mModes.modeAt(expected.timeNs);
    if (mode != expected.mode) return mModes.causeAt(expected.timeNs);

    CauseSet causes;
    // A boost needs reports of a target application with a period that matches the mode.
    const bool isSilent = isLayerSilent && !hasBoost(expected.timeNs);
    if (isSilent) causes.add(Cause::OtherLayer);
    if (isLayerSilent) causes.add(Cause::OtherPeer);
    if ((isSilent || !isLayerSilent) && !isReported(frame)) causes.add(Cause::NotReported);
    causes.add(mDepths.causesOfSilence(expected));
    causes.add(mStamps.causesOfSilence(expected));
    if (isSilent) causes.add(Cause::PeriodInNoBand);
    if (isSilent || hasOtherPeriodBefore(frame)) causes.add(Cause::PeriodOfOtherDisplay);
    return causes.isEmpty() ? Cause::Unexplained : causes;
}

bool CauseFinder::hasDecisions(const std::vector<int64_t>& counts, int64_t timeNs,
                               int64_t distanceNs) const {
    const size_t first = indexAt(mFrames, timeNs - distanceNs);
    const size_t last = indexAt(mFrames, timeNs + distanceNs);
    return counts[first] != counts[last];
}

// The next decision shows the time of the frame before it.
bool CauseFinder::isReported(size_t frame) const {
    const int64_t queuedNs = mFrames[frame].timeNs;
    for (size_t i = frame + 1; i < mFrames.size() && mFrames[i].timeNs <= queuedNs + kFarNs; ++i) {
        const DecisionLabel* const label = recordedLabel(i);
        if (mFrames[i].layer != mFrames[frame].layer || label == nullptr) continue;
        return isSameTime(timeBefore(mFrames[i].timeNs, label->intervalNs), queuedNs);
    }
    return false;
}

bool CauseFinder::hasOtherPeriodBefore(size_t frame) const {
    const ExpectedFrame& expected = mFrames[frame];
    for (size_t i = frame; i-- > 0 && mFrames[i].timeNs >= expected.timeNs - kNearNs;) {
        const DecisionLabel* const label = recordedLabel(i);
        if (mFrames[i].layer != expected.layer || label == nullptr) continue;
        return !isPeriodOf(*label, expected);
    }
    return false;
}

bool CauseFinder::hasBoost(int64_t timeNs) const {
    const auto boost = std::lower_bound(mBoostsNs.begin(), mBoostsNs.end(), timeNs - kNearNs);
    return boost != mBoostsNs.end() && *boost <= timeNs + kNearNs;
}

}  // namespace brevold::verify
