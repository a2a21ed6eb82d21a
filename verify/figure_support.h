#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "verify/cause.h"
#include "verify/expected_frames.h"
#include "verify/pairing.h"

namespace brevold::verify {

/** A value that a compositor may report for a figure of a frame. */
struct FigureCandidate {
    std::optional<Cause> cause;  // none for the right value
    int64_t (*valueOf)(const ExpectedFrame& frame);
};

/** A figure of frames: in labels and in the replay, and the wrong values that can be recognised. */
struct Figure {
    int64_t (*recordedValue)(const ExpectedFrame& frame, const DecisionLabel& label);
    void (*set)(FrameFigures& figures, const ExpectedFrame& frame, int64_t value);
    std::vector<FigureCandidate> candidates;  // the first is the right value
    /** The cause of any other value. */
    Cause other;
    /** Candidates fit a value if they are as near as the nearest one, which is near enough. */
    int64_t equalDistance;
    int64_t maxDistance;
};

const Figure& depthFigure();
const Figure& stampFigure();

/** How often the candidates of a figure fit the labels of a recording. */
class FigureSupport {
  public:
    /** `figure`, `frames` and `pairing` have to outlive the object. */
    FigureSupport(const Figure& figure, const std::vector<ExpectedFrame>& frames,
                  const Pairing& pairing);

    /**
     * Returns the causes for the value in a label, or none if it is right. Of several candidates
     * that fit the label, returns those that fit the most labels.
     */
    CauseSet causesOf(const ExpectedFrame& frame, const DecisionLabel& label) const;

    /**
     * Returns the causes for which the library makes no decision for a frame, and that fit the
     * labels. Without labels, the causes for which it makes none for all frames with a decision.
     */
    CauseSet causesOfSilence(const ExpectedFrame& frame) const;

  private:
    std::vector<size_t> fitting(const ExpectedFrame& frame, const DecisionLabel& label) const;
    bool isSilent(const ExpectedFrame& frame, const FigureCandidate& candidate) const;

    const Figure& mFigure;
    std::vector<int64_t> mFits;     // of each candidate
    std::vector<bool> mIsPossible;  // as the cause of a missing decision
};

}  // namespace brevold::verify
