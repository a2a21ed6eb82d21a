// Replays in processes of their own, their differences, missed refreshes, and scales.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <limits>

#include "replay/divergence.h"
#include "replay/isolated_play.h"
#include "replay/missed_refreshes.h"
#include "report/scale_bars.h"
#include "report/summary.h"
#include "tests/inputs.h"

namespace brevold::replay {
namespace {

constexpr int64_t kMs = 1'000'000;

using Kind = trace::TimelineEvent::Kind;

const std::vector<std::string> kScaling = {"feature.5=1", "vendor.perf.pfar.enable=1",
                                           "vendor.perf.brevold.debug=1"};

TEST(IsolatedPlayTest, ReportsHowTheReplayFailed) {
    trace::Timeline timeline;
    timeline.layers = {{"com.example/a#1", 1}};
    // The first frame's predecessor has the stamp -1: their difference overflows.
    const int64_t timeNs = std::numeric_limits<int64_t>::max();
    timeline.events = {{timeNs, Kind::Frame, 0, 1, 0, 0}};
    const auto errorWith = [&](const std::vector<std::string>& settings) {
        return test::errorOf<std::runtime_error>([&] { playIsolated(timeline, settings); });
    };
    EXPECT_EQ(errorWith(kScaling), "the library ended the replay: Aborted");
    EXPECT_EQ(errorWith({"feature.5"}), "expected key=value, got \"feature.5\"");
    EXPECT_EQ(errorWith({}), "");
}

TEST(IsolatedPlayTest, RecordsMarksUnlessTheyAreOff) {
    // Compositions at a steady 60 Hz for 1.5 s, which is one window.
    constexpr int64_t kPeriodNs = 16'666'666;
    trace::Timeline timeline;
    timeline.layers = {{"com.a/a#1", 1}};
    timeline.startNs = kPeriodNs;
    for (int64_t i = 1; i <= 90; ++i)
        timeline.events.push_back({i * kPeriodNs, Kind::CompositionBegin, 0, 0, 0, 0});
    for (const bool hasMarks : {true, false}) {
        const Recording recording = playIsolated(timeline, kScaling, {BoostDepth::Left, hasMarks});
        EXPECT_EQ(recording.marks.size(), hasMarks ? 2u : 0u);
        EXPECT_EQ(recording.log.size(), 1u);
    }
}

host::Hint down(int64_t timeNs, uint32_t type, int32_t durationMs = 19) {
    return {timeNs, host::HintKind::Down, 0x1046, durationMs, type, 0.0, 1, 0};
}

Recording recordingOf(std::vector<host::Hint> hints, std::vector<int64_t> verdictTimesNs = {}) {
    Recording recording;
    recording.hints = std::move(hints);
    recording.verdictTimesNs = std::move(verdictTimesNs);
    return recording;
}

/** "1: 5 6/1 | /0": a time, and the type words and the number of verdicts of each side. */
std::string textOf(const Divergence& divergence) {
    std::string text = fmt::format("{}:", divergence.timeNs);
    for (const Moment& side : {divergence.first, divergence.second}) {
        for (const host::Hint& hint : side.hints)
            text += fmt::format(" {}", hint.type);
        text += fmt::format("/{}", side.verdicts);
    }
    return text + "; ";
}

TEST(DivergenceTest, FindsTheFirstTimesThatDiffer) {
    const std::tuple<Recording, Recording, const char*> cases[] = {
            {recordingOf({down(1, 5)}, {2}), recordingOf({down(1, 5)}, {2}), ""},
            {recordingOf({down(1, 5)}), recordingOf({down(1, 6)}), "1: 5/0 6/0; "},
            {recordingOf({down(1, 5)}), recordingOf({down(1, 5, 13)}), "1: 5/0 5/0; "},
            {recordingOf({down(1, 5)}), recordingOf({down(1, 5), down(1, 6)}), "1: 5/0 5 6/0; "},
            {recordingOf({}, {4, 4}), recordingOf({}, {4}), "4:/2/1; "},
            {recordingOf({down(1, 5)}, {7}), recordingOf({down(3, 5)}, {2, 7}),
             "1: 5/0/0; 2:/0/1; 3:/0 5/0; "},
            // At most three, from 1 to 8.
            {recordingOf({down(8, 5)}, {0, 1, 2, 3, 4}), {}, "1:/1/0; 2:/1/0; 3:/1/0; "},
            {recordingOf({down(9, 5)}, {0, 8}), {}, "8:/1/0; "},
    };
    for (const auto& [first, second, expected] : cases) {
        std::string text;
        for (const Divergence& divergence : firstDivergences(first, second, {1, 8}, 3))
            text += textOf(divergence);
        EXPECT_EQ(text, expected);
    }
}

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
    MissedRefreshes refreshes;
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
    for (const double scale : {0.0, 0.099, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.899, 0.9, 1.0})
        hints.push_back({0, host::HintKind::Down, 0, 0, 0, scale, 0, 0});
    for (const double scale :
         {1.001, 1.5, 2.0, 3.0, 4.0, 6.0, 8.0, 12.0, 16.0, 23.999, 24.0, 65.535})
        hints.push_back({0, host::HintKind::Up, 0, 0, 0, scale, 0, 0});
    const report::RequestSummaries requests = report::summariseRequests(hints, {}, {0, 1});
    const report::RequestSummary& down = requests[static_cast<size_t>(host::HintKind::Down)];
    const report::RequestSummary& up = requests[static_cast<size_t>(host::HintKind::Up)];
    EXPECT_EQ(report::scaleBars(down, host::HintKind::Down), "0 [█▄▄▄▄▄▄▄██] 1");
    EXPECT_EQ(report::scaleBars(up, host::HintKind::Up), "1 [▄▄▄▄▄▄▄▄██] 24 and more");
    EXPECT_EQ(down.zeroScales, 1);
    EXPECT_EQ(up.p05Scale, 1.001);
    EXPECT_EQ(up.p50Scale, 6.0);
    EXPECT_EQ(up.p95Scale, 65.535);
}

}  // namespace
}  // namespace brevold::replay
