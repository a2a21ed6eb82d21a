#include "verify/mode_evidence.h"

#include <algorithm>
#include <cmath>

#include "brevold/frame_rate.h"

namespace brevold::verify {

namespace {

constexpr int64_t kWindowNs = 1'000'000'000;
/** The window may have a composition more or less than the second before its end. */
constexpr double kCountTolerance = 3.0;
constexpr double kRateTolerance = 0.1;

}  // namespace

ModeEvidence::ModeEvidence(const LibraryMarks& recorded,
                           const std::vector<replay::ModeChange>& modes,
                           const Expectation& expected)
      : mRecorded(recorded), mCompositionsNs(expected.compositionsNs), mReplayed(modes) {
    for (const int64_t timeNs : expected.modeResetsNs)
        mModes.push_back({timeNs, android::kModeUnclassified});
    for (const WindowMark& window : recorded.windows)
        mModes.push_back({window.timeNs, window.label.mode});
    for (const DecisionMark& decision : recorded.decisions)
        mModes.push_back({decision.timeNs, decision.label.mode});
    std::stable_sort(
            mModes.begin(), mModes.end(),
            [](const RecordedMode& a, const RecordedMode& b) { return a.timeNs < b.timeNs; });
}

std::optional<int32_t> ModeEvidence::modeAt(int64_t timeNs) const {
    const auto next =
            std::upper_bound(mModes.begin(), mModes.end(), timeNs,
                             [](int64_t t, const RecordedMode& mode) { return t < mode.timeNs; });
    if (next == mModes.begin()) return {};
    return std::prev(next)->mode;
}

int32_t ModeEvidence::replayedModeAt(int64_t timeNs) const {
    const auto next = std::upper_bound(
            mReplayed.begin(), mReplayed.end(), timeNs,
            [](int64_t t, const replay::ModeChange& change) { return t < change.timeNs; });
    return next == mReplayed.begin() ? android::kModeUnclassified : std::prev(next)->mode;
}

int32_t ModeEvidence::expectedModeAt(int64_t timeNs) const {
    const std::optional<int32_t> recorded = modeAt(timeNs);
    const int32_t replayed = replayedModeAt(timeNs);
    if (!recorded || *recorded == replayed) return replayed;
    return causeAt(timeNs) == Cause::WindowStart ? *recorded : replayed;
}

Cause ModeEvidence::causeAt(int64_t timeNs) const {
    const std::vector<WindowMark>& windows = mRecorded.windows;
    if (windows.empty()) return Cause::TickRate;
    const auto next =
            std::upper_bound(windows.begin(), windows.end(), timeNs,
                             [](int64_t t, const WindowMark& window) { return t < window.timeNs; });
    const WindowMark& inForce = next == windows.begin() ? *next : *std::prev(next);
    return hasRateOfCompositions(inForce) ? Cause::WindowStart : Cause::TickRate;
}

bool ModeEvidence::hasRateOfCompositions(const WindowMark& window) const {
    const int64_t beginNs = window.timeNs - kWindowNs;
    // The recording may have started in the window.
    if (mCompositionsNs.empty() || mCompositionsNs.front() > beginNs) return true;
    const auto begin = std::upper_bound(mCompositionsNs.begin(), mCompositionsNs.end(), beginNs);
    const auto end = std::upper_bound(begin, mCompositionsNs.end(), window.timeNs);
    const auto count = static_cast<double>(end - begin);
    return std::abs(window.label.fps - count) <= std::max(kCountTolerance, kRateTolerance * count);
}

void expectDecisions(const ModeEvidence& modes, std::vector<ExpectedFrame>* frames) {
    for (ExpectedFrame& frame : *frames) {
        if (!frame.isModeTested) continue;
        frame.mode = modes.expectedModeAt(frame.timeNs);
        frame.decision = decide(frame.figures());
    }
}

}  // namespace brevold::verify
