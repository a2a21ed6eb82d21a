#include "verify/figure_support.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace brevold::verify {

namespace {

/** Of candidates that fit almost equally often, none is preferred. */
constexpr double kEqualShare = 0.98;

bool isAsFrequent(int64_t fits, int64_t maxFits) {
    return static_cast<double>(fits) >= kEqualShare * static_cast<double>(maxFits);
}

}  // namespace

const Figure& depthFigure() {
    using Frame = ExpectedFrame;
    static const Figure kFigure = {
            [](const Frame&, const DecisionLabel& label) { return int64_t{label.depth}; },
            [](FrameFigures& figures, const Frame&, int64_t depth) {
                figures.depth = static_cast<int32_t>(depth);
            },
            {{{}, [](const Frame& frame) { return int64_t{frame.depth}; }},
             {Cause::DepthPlusOne, [](const Frame& frame) { return int64_t{frame.depth} + 1; }},
             {Cause::DepthMinusOne, [](const Frame& frame) { return int64_t{frame.depth} - 1; }},
             {Cause::DepthBeforeLatch,
              [](const Frame& frame) { return int64_t{frame.depth} + frame.latchedBefore; }},
             {Cause::DepthAfterLatch,
              [](const Frame& frame) { return int64_t{frame.depth} - frame.latchedAfter; }}},
            Cause::DepthOther,
            0,
            0};
    return kFigure;
}

const Figure& stampFigure() {
    using Frame = ExpectedFrame;
    static const Figure kFigure = {
            [](const Frame& frame, const DecisionLabel& label) {
                return timeBefore(frame.timeNs, label.sinceStampNs);
            },
            [](FrameFigures& figures, const Frame& frame, int64_t stampNs) {
                figures.sinceStampNs = frame.timeNs - stampNs;
            },
            {{{}, [](const Frame& frame) { return frame.stampNs; }},
             {Cause::StampVsync, [](const Frame& frame) { return frame.vsyncNs; }},
             {Cause::StampPrevious, [](const Frame& frame) { return frame.previousStampNs; }},
             {Cause::StampZero, [](const Frame&) { return int64_t{0}; }}},
            Cause::StampOther,
            50'000,
            kTimeToleranceNs};
    return kFigure;
}

FigureSupport::FigureSupport(const Figure& figure, const std::vector<ExpectedFrame>& frames,
                             const Pairing& pairing)
      : mFigure(figure), mFits(figure.candidates.size()), mIsPossible(figure.candidates.size()) {
    bool hasLabels = false;
    for (size_t i = 0; i < frames.size(); ++i) {
        const DecisionMark* const recorded = pairing.frames[i].recorded;
        if (!frames[i].isFocused || recorded == nullptr) continue;
        hasLabels = true;
        for (const size_t candidate : fitting(frames[i], recorded->label))
            ++mFits[candidate];
    }
    const int64_t maxFits = *std::max_element(mFits.begin(), mFits.end());
    for (size_t c = 1; c < mFits.size(); ++c) {
        mIsPossible[c] = hasLabels ? mFits[c] > 0 && isAsFrequent(mFits[c], maxFits) : true;
        for (size_t i = 0; i < frames.size() && !hasLabels; ++i) {
            if (!frames[i].decision) continue;
            mIsPossible[c] = mIsPossible[c] && isSilent(frames[i], figure.candidates[c]);
        }
    }
}

CauseSet FigureSupport::causesOf(const ExpectedFrame& frame, const DecisionLabel& label) const {
    const std::vector<size_t> candidates = fitting(frame, label);
    if (candidates.empty()) return mFigure.other;
    if (candidates.front() == 0) return {};
    int64_t maxFits = 0;
    for (const size_t candidate : candidates)
        maxFits = std::max(maxFits, mFits[candidate]);
    CauseSet causes;
    for (const size_t candidate : candidates) {
        if (isAsFrequent(mFits[candidate], maxFits))
            causes.add(*mFigure.candidates[candidate].cause);
    }
    return causes;
}

CauseSet FigureSupport::causesOfSilence(const ExpectedFrame& frame) const {
    CauseSet causes;
    for (size_t c = 1; c < mFigure.candidates.size(); ++c) {
        const FigureCandidate& candidate = mFigure.candidates[c];
        if (mIsPossible[c] && isSilent(frame, candidate)) causes.add(*candidate.cause);
    }
    return causes;
}

std::vector<size_t> FigureSupport::fitting(const ExpectedFrame& frame,
                                           const DecisionLabel& label) const {
    const int64_t recorded = mFigure.recordedValue(frame, label);
    int64_t minDistance = std::numeric_limits<int64_t>::max();
    std::vector<int64_t> distances;
    for (const FigureCandidate& candidate : mFigure.candidates) {
        int64_t difference;
        const bool overflows =
                __builtin_sub_overflow(candidate.valueOf(frame), recorded, &difference) ||
                difference == std::numeric_limits<int64_t>::min();
        distances.push_back(overflows ? std::numeric_limits<int64_t>::max() : std::abs(difference));
        minDistance = std::min(minDistance, distances.back());
    }
    std::vector<size_t> fitting;
    if (minDistance > mFigure.maxDistance) return fitting;
    for (size_t i = 0; i < distances.size(); ++i) {
        if (distances[i] <= minDistance + mFigure.equalDistance) fitting.push_back(i);
    }
    return fitting;
}

bool FigureSupport::isSilent(const ExpectedFrame& frame, const FigureCandidate& candidate) const {
    // The library makes no decision after a frame whose stamp is 0.
    if (candidate.cause == Cause::StampZero) return true;
    FrameFigures figures = frame.figures();
    mFigure.set(figures, frame, candidate.valueOf(frame));
    return !decide(figures);
}

}  // namespace brevold::verify
