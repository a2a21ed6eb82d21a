#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace brevold::sim {

/**
 * Counts missed vsyncs: an interval of n refreshes between two latches misses n - m, where m is the
 * median of the 15 intervals before it. Intervals of an idle display neither miss nor count.
 */
class MissedVsyncs {
  public:
    explicit MissedVsyncs(int64_t periodNs) : mPeriodNs(periodNs) {}

    /** Returns the number of vsyncs missed since the previous latch. */
    int64_t latch(int64_t timeNs);

  private:
    const int64_t mPeriodNs;
    int64_t mLastLatchNs = 0;
    std::deque<int64_t> mRecent;  // in refreshes
};

}  // namespace brevold::sim
