#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "sim/device.h"

namespace brevold::sim {

/** Chooses the operating point of a cluster. Times are nanoseconds and must not decrease. */
class Governor {
  public:
    /** A point that is given in `heldPoint` is chosen always. */
    Governor(const GovernorSpec& spec, const ClusterSpec& cluster, std::optional<size_t> heldPoint);

    size_t point() const { return mPoint; }

    /** Evaluates the choice. `utilisation` is that of the busiest core. */
    void update(int64_t nowNs, double utilisation);

  private:
    const GovernorSpec& mSpec;
    const ClusterSpec& mCluster;
    const bool mIsConstant;
    size_t mPoint;
    int64_t mLastChangeNs = std::numeric_limits<int64_t>::min() / 2;
};

}  // namespace brevold::sim
