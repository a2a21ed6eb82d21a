#include "replay/missed_refreshes.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "brevold/frame_rate.h"

namespace brevold::replay {

namespace {

constexpr size_t kMaxRecent = 15;

int64_t medianOf(const std::deque<int64_t>& values) {
    std::vector<int64_t> sorted(values.begin(), values.end());
    const auto middle = sorted.begin() + static_cast<ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    return *middle;
}

int64_t toRefreshes(int64_t intervalNs, int64_t periodNs) {
    return (intervalNs + periodNs / 2) / periodNs;
}

}  // namespace

int64_t MissedRefreshes::latch(int64_t timeNs, int64_t periodNs) {
    const int64_t intervalNs = timeNs - mLastLatchNs.value_or(timeNs);
    const int64_t refreshes = toRefreshes(intervalNs, periodNs);
    if (mLastLatchNs && refreshes == 0) return 0;
    const bool isCounted = mLastLatchNs && !android::isIdleGap(intervalNs);
    mLastLatchNs = timeNs;
    if (!isCounted) return 0;
    const int64_t expected =
            mRecentNs.empty() ? refreshes
                              : std::max<int64_t>(toRefreshes(medianOf(mRecentNs), periodNs), 1);
    mRecentNs.push_back(intervalNs);
    if (mRecentNs.size() > kMaxRecent) mRecentNs.pop_front();
    return std::max<int64_t>(refreshes - expected, 0);
}

}  // namespace brevold::replay
