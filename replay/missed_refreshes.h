#pragma once

#include <cstdint>
#include <deque>
#include <optional>

namespace brevold::replay {

/**
 * Counts missed refreshes of one layer: an interval of n refreshes between two latches misses
 * n - m, where m is the median of the 15 intervals before it, in refreshes of the current period.
 * Latches in the same refresh count as one. The intervals of an idle layer (android::isIdleGap)
 * neither miss nor count, and the first interval misses nothing.
 */
class MissedRefreshes {
  public:
    /** Returns the number of refreshes missed since the previous latch. Times must not decrease. */
    int64_t latch(int64_t timeNs, int64_t periodNs);

  private:
    std::optional<int64_t> mLastLatchNs;
    std::deque<int64_t> mRecentNs;
};

}  // namespace brevold::replay
