#include "sim/missed_vsyncs.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "brevold/frame_rate.h"

namespace brevold::sim {

namespace {

constexpr size_t kMaxRecent = 15;

int64_t medianOf(const std::deque<int64_t>& values) {
    std::vector<int64_t> sorted(values.begin(), values.end());
    const auto middle = sorted.begin() + static_cast<ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    return *middle;
}

}  // namespace

int64_t MissedVsyncs::latch(int64_t timeNs) {
    const int64_t lastNs = std::exchange(mLastLatchNs, timeNs);
    const int64_t intervalNs = timeNs - lastNs;
    if (lastNs == 0 || android::isIdleGap(intervalNs)) return 0;
    const int64_t refreshes = (intervalNs + mPeriodNs / 2) / mPeriodNs;
    const int64_t missed =
            mRecent.empty() ? 0 : std::max<int64_t>(refreshes - medianOf(mRecent), 0);
    mRecent.push_back(refreshes);
    if (mRecent.size() > kMaxRecent) mRecent.pop_front();
    return missed;
}

}  // namespace brevold::sim
