#pragma once

#include <cstdint>
#include <vector>

#include "replay/play_options.h"
#include "replay/recording.h"
#include "verify/differences.h"
#include "verify/mode_evidence.h"

namespace brevold::verify {

/** How the boosts of a recording fit those of a replay with a certain boost depth. */
struct BoostFit {
    replay::BoostDepth depth;
    int64_t compositions;  // with a boost in either of them
    int64_t agreeing;      // with a boost in both
};

/** The compositions after which boosts were sent, by index. */
class Boosts {
  public:
    /**
     * A boost belongs to the latest composition that begins before it. Boosts are left out if the
     * trace does not show the refresh period yet, or if the replay has another mode than expected.
     */
    Boosts(const std::vector<int64_t>& timesNs, const Expectation& expected,
           const ModeEvidence& modes);

    bool isAfter(size_t composition) const { return mIsAfter[composition]; }

  private:
    std::vector<bool> mIsAfter;
};

/** A replay with a boost depth, and its boosts. */
struct BoostReplay {
    BoostFit fit;
    Boosts boosts;
};

BoostReplay fitBoosts(const Boosts& recorded, const replay::Recording& replayed,
                      replay::BoostDepth depth, const Expectation& expected,
                      const ModeEvidence& modes);

/** Returns the beginnings of the compositions after which both have a boost. */
std::vector<int64_t> commonBoostsNs(const Boosts& recorded, const Boosts& replayed,
                                    const std::vector<int64_t>& compositionsNs);

/**
 * Compares recorded boosts with those of the replay. `other` is a replay with the other boost
 * depth, or null if all boosts agree. The decisions have to be compared before, and sorted.
 */
void compareBoosts(const Boosts& recorded, const BoostReplay& replayed, const BoostReplay* other,
                   const std::vector<int64_t>& compositionsNs, const ModeEvidence& modes,
                   Differences* differences);

}  // namespace brevold::verify
