#include "report/summary.h"

#include <gtest/gtest.h>

#include "replay/missed_refreshes.h"

namespace brevold::report {
namespace {

constexpr int64_t kMs = 1'000'000;

TEST(MissedRefreshesTest, CountsAgainstTheMedianOfTheIntervalsBefore) {
    const struct {
        const char* name;
        int64_t intervalMs;
        int64_t periodMs;
        int64_t missed;
    } latches[] = {
            {"the first latch", 0, 16, 0},
            {"the first interval", 32, 16, 0},
            {"as before", 32, 16, 0},
            {"late", 80, 16, 3},
            {"early", 16, 16, 0},
            {"another latch in the same refresh", 7, 16, 0},
            {"on time after it", 25, 16, 0},
            {"idle", 150, 16, 0},
            {"the longest interval that is not idle", 149, 16, 7},
            {"the period halves", 32, 8, 0},
            {"late by one short period", 40, 8, 1},
    };
    replay::MissedRefreshes missed;
    int64_t timeNs = 0;
    for (const auto& latch : latches) {
        timeNs += latch.intervalMs * kMs;
        EXPECT_EQ(missed.latch(timeNs, latch.periodMs * kMs), latch.missed) << latch.name;
    }
    for (int i = 0; i < 15; ++i) {
        timeNs += 8 * kMs;
        missed.latch(timeNs, 8 * kMs);
    }
    EXPECT_EQ(missed.latch(timeNs + 16 * kMs, 8 * kMs), 1) << "only the last 15 count";
}

}  // namespace
}  // namespace brevold::report
