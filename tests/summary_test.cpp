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

/** Two layers; the second gets the focus at 400 ms, after a pause of the first. */
trace::Timeline twoLayers() {
    using Kind = trace::TimelineEvent::Kind;
    trace::Timeline timeline;
    timeline.layers = {{"a#1", 0}, {"b,\"c\"#2", 0}};
    timeline.startNs = 1000 * kMs;
    timeline.endNs = 1700 * kMs;
    timeline.events = {{1000 * kMs, Kind::Period, 0, 0, 0, 20 * kMs}};
    const auto frame = [&](int64_t timeMs, int32_t layer) {
        timeline.events.push_back({timeMs * kMs, Kind::Frame, layer, 1, 0, 0});
        timeline.events.push_back({(timeMs + 5) * kMs, Kind::Depth, layer, 0, 0, 0});
    };
    for (const int64_t timeMs : {1000, 1020, 1040, 1100, 1249})
        frame(timeMs, 0);
    timeline.events.push_back({1400 * kMs, Kind::Focus, 1, 0, 0, 0});
    frame(1410, 1);
    frame(1420, 0);
    frame(1500, 1);
    return timeline;
}

TEST(FrameFiguresTest, AreThoseOfTheLayerInFocus) {
    const trace::Timeline timeline = twoLayers();
    const FrameFigures all = frameFigures(timeline, {timeline.startNs, timeline.endNs});
    EXPECT_EQ(all.intervals, 5);
    EXPECT_NEAR(all.meanRateHz, 5 / 0.339, 1e-9);
    EXPECT_EQ(all.medianNs, 60 * kMs);
    EXPECT_EQ(all.p95Ns, 149 * kMs);
    EXPECT_EQ(all.missedRefreshes, 2 + 6);
    EXPECT_EQ(all.idleNs, (151 + 200) * kMs);
    const FrameFigures part = frameFigures(timeline, {1040 * kMs, 1300 * kMs});
    EXPECT_EQ(part.intervals, 3);
    EXPECT_EQ(part.missedRefreshes, 8);
    EXPECT_EQ(part.idleNs, 51 * kMs);
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
    EXPECT_EQ(up.p05Scale, 1.001);
    EXPECT_EQ(up.p50Scale, 23.999);
    EXPECT_EQ(up.p95Scale, 65.535);
}

}  // namespace
}  // namespace brevold::report
