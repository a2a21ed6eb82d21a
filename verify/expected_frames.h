#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "replay/recording.h"
#include "trace/timeline.h"
#include "verify/decision_rule.h"

namespace brevold::verify {

/** Returns true if two times are equal within the tolerance. */
bool isSameTime(int64_t aNs, int64_t bNs);

/** Returns timeNs - lengthNs, or the nearest number. Lengths in labels may be any. */
int64_t timeBefore(int64_t timeNs, int64_t lengthNs);

/** A frame of a timeline, and the figures with which a correct integration reports it. */
struct ExpectedFrame {
    int64_t timeNs;
    int32_t tid;
    int32_t layer;
    bool isFocused;
    int32_t depth;
    std::optional<int64_t> previousNs;  // the layer's frame before
    int64_t periodNs;
    int32_t mode;
    /** The frame reaches the library's comparison of the mode with the refresh period. */
    bool isModeTested;
    // The compositor's stamps; 0 if there is none yet.
    int64_t stampNs;          // the beginning of the latest composition
    int64_t previousStampNs;  // of the one before
    int64_t vsyncNs;          // the latest vsync
    // Frames of the layer that a composition takes.
    int32_t latchedBefore = 0;  // the latest one
    int32_t latchedAfter = 0;   // the next one
    std::optional<DecisionLabel> decision = {};

    FrameFigures figures() const {
        return {periodNs, mode, depth, timeNs - previousNs.value_or(timeNs), timeNs - stampNs};
    }
};

/** Times of a recording and of a replay are equal within this tolerance. */
constexpr int64_t kTimeToleranceNs = 1'000'000;

/** A timeline as the replay reports it. */
struct Expectation {
    std::vector<ExpectedFrame> frames;    // with the modes of the replay, and without decisions
    std::vector<int64_t> compositionsNs;  // their beginnings
    /** The library resets the mode: after idle gaps, and for a new layer in focus. */
    std::vector<int64_t> modeResetsNs;
    /** Until then the trace does not show the refresh period. */
    int64_t periodKnownFromNs;
};

Expectation expect(const trace::Timeline& timeline, const replay::Recording& replayed);

}  // namespace brevold::verify
