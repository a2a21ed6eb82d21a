#include "report/summary.h"

#include <gtest/gtest.h>

#include "replay/missed_refreshes.h"
#include "report/scale_bars.h"

namespace brevold::report {
namespace {

constexpr int64_t kMs = 1'000'000;

TEST(MissedRefreshesTest, CountsAgainstTheMedianOfTheIntervalsBefore) {
    const std::tuple<const char*, int64_t, int64_t, int64_t> latches[] = {
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
            {"a period longer than the pace", 70, 70, 0},
    };
    replay::MissedRefreshes refreshes;
    int64_t timeNs = 0;
    for (const auto& [name, intervalMs, periodMs, missed] : latches) {
        timeNs += intervalMs * kMs;
        EXPECT_EQ(refreshes.latch(timeNs, periodMs * kMs), missed) << name;
    }
    for (int i = 0; i < 15; ++i) {
        timeNs += 8 * kMs;
        refreshes.latch(timeNs, 8 * kMs);
    }
    EXPECT_EQ(refreshes.latch(timeNs + 16 * kMs, 8 * kMs), 1) << "only the last 15 count";
}

TEST(RequestSummaryTest, CountsScalesByBins) {
    std::vector<host::Hint> hints;
    for (const double scale : {0.0, 0.099, 0.1, 0.899, 0.9, 1.0})
        hints.push_back({0, host::HintKind::Down, 0, 0, 0, scale, 0, 0});
    for (const double scale : {1.001, 1.5, 23.999, 24.0, 65.535})
        hints.push_back({0, host::HintKind::Up, 0, 0, 0, scale, 0, 0});
    const RequestSummaries requests = summariseRequests(hints, {}, {0, 1});
    const RequestSummary& down = requests[static_cast<size_t>(host::HintKind::Down)];
    const RequestSummary& up = requests[static_cast<size_t>(host::HintKind::Up)];
    EXPECT_EQ(scaleBars(down, host::HintKind::Down), "0 [█▄      ▄█] 1");
    EXPECT_EQ(scaleBars(up, host::HintKind::Up), "1 [▄▄      ▄█] 24 and more");
    EXPECT_EQ(down.zeroScales, 1);
    EXPECT_EQ(std::tie(up.p05Scale, up.p50Scale, up.p95Scale),
              std::make_tuple(1.001, 23.999, 65.535));
}

}  // namespace
}  // namespace brevold::report
