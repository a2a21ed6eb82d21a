#pragma once

#include <cstdint>
#include <vector>

#include "verify/cause.h"
#include "verify/expected_frames.h"
#include "verify/figure_support.h"
#include "verify/mode_evidence.h"
#include "verify/pairing.h"

namespace brevold::verify {

/** Finds the causes for which recorded and expected decisions differ. */
class CauseFinder {
  public:
    /**
     * `boostsNs` are the times of boosts in the recording that the replay has too. The arguments
     * have to outlive the object.
     */
    CauseFinder(const std::vector<ExpectedFrame>& frames, const Pairing& pairing,
                const ModeEvidence& modes, const std::vector<int64_t>& boostsNs);

    /** The decisions for this frame differ. */
    CauseSet ofFrame(size_t frame) const;
    CauseSet ofExtra(const ExtraDecision& extra) const;

  private:
    const DecisionLabel* recordedLabel(size_t frame) const;
    CauseSet ofLabel(size_t frame, const DecisionLabel& label) const;
    CauseSet ofSilence(size_t frame) const;
    CauseSet ofInterval(size_t frame, const DecisionLabel& label) const;
    bool isReported(size_t frame) const;
    bool hasOtherPeriodBefore(size_t frame) const;
    bool hasDecisions(const std::vector<int64_t>& counts, int64_t timeNs, int64_t distanceNs) const;
    bool hasBoost(int64_t timeNs) const;

    const std::vector<ExpectedFrame>& mFrames;
    const Pairing& mPairing;
    const ModeEvidence& mModes;
    const std::vector<int64_t>& mBoostsNs;
    const FigureSupport mDepths;
    const FigureSupport mStamps;
    // Counts of the frames before each index that have a recorded decision.
    std::vector<int64_t> mDecidedFocused;
    std::vector<int64_t> mDecidedOther;
};

}  // namespace brevold::verify
