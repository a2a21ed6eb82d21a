#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "verify/expected_frames.h"
#include "verify/library_marks.h"

namespace brevold::verify {

/** The recorded decision for a frame; null without one. */
struct FrameDecision {
    const DecisionMark* recorded = nullptr;
    /** The recording may have a decision that cannot be read. */
    bool isUnreadable = false;
};

/** A recorded decision besides the first one for its frame, or too far from all frames. */
struct ExtraDecision {
    const DecisionMark* mark;
    std::optional<size_t> frame;
};

struct Pairing {
    std::vector<FrameDecision> frames;  // with the indices of the expected frames
    std::vector<ExtraDecision> extras;
};

/**
 * Assigns each recorded decision to the nearest frame within a refresh period, of any layer,
 * because labels name no layer. Frames on the thread of the decision are preferred. The marks have
 * to outlive the result.
 */
Pairing pairDecisions(const std::vector<ExpectedFrame>& frames, const LibraryMarks& recorded);

}  // namespace brevold::verify
