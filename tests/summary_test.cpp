#include "report/summary.h"

#include <gtest/gtest.h>

#include <numeric>
#include <sstream>

#include "host/device_profile.h"
#include "replay/isolated_play.h"
#include "replay/missed_refreshes.h"
#include "report/hints_csv.h"
#include "report/scale_bars.h"
#include "report/summary_text.h"
#include "trace/read_timeline.h"

namespace brevold::report {
namespace {

using replay::FrameOutcome;

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
            {"a period longer than the pace", 70, 70, 0},
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

/** Returns the times of the hints of one kind, or of the frames with one outcome. */
template <typename Items, typename Item, typename Value>
std::vector<int64_t> timesOf(const Items& items, Value Item::*member, Value value) {
    std::vector<int64_t> timesNs;
    for (const Item& item : items) {
        if (item.*member == value) timesNs.push_back(item.timeNs);
    }
    return timesNs;
}

TEST(FrameOutcomeTest, AgreesWithTheHintsOnTheExamples) {
    const std::string examples = BREVOLD_EXAMPLES;
    host::loadProfile(examples + "/everything-on.profile");
    const std::string game = "/game-120hz-falls-behind.ftrace.txt";
    const struct {
        std::string trace;
        std::vector<std::string> settings;
        double rateHz;
        FrameOutcome outcome;
        int32_t frames;
    } cases[] = {
            {game, {}, 0, FrameOutcome::AskedUp, 19},
            {game, {"vendor.perf.brevold.debug=0"}, 0, FrameOutcome::UnknownMode, 272},
            {game, {"vendor.perf.pfar.down.enable=0"}, 0, FrameOutcome::DownOff, 258},
            {game, {"vendor.perf.pfar.enable=0"}, 0, FrameOutcome::ScalingOff, 552},
            {game, {"app-type.*=1"}, 0, FrameOutcome::NoTargetApp, 551},
            {game,
             {"vendor.perf.brevold.debug.layers=a com.example.racer/com.example.racer.Track#118"},
             0,
             FrameOutcome::NoTargetApp,
             551},
            {game, {}, 144, FrameOutcome::UnsupportedPeriod, 549},
            {"/game-60hz-headroom.ftrace.txt", {}, 0, FrameOutcome::AskedDown, 177},
            {"/video-30fps-gap.ftrace.txt", {}, 0, FrameOutcome::OtherMode, 20},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.trace + (c.settings.empty() ? "" : ' ' + c.settings[0]));
        trace::TraceInput input(examples + c.trace);
        trace::TimelineOptions options;
        if (c.rateHz != 0) options.refreshRateHz = c.rateHz;
        const trace::Timeline timeline = trace::readTimeline(input, options);
        const replay::Recording recording = replay::playIsolated(timeline, c.settings);
        for (const auto& [kind, outcome] :
             {std::pair(host::HintKind::Down, FrameOutcome::AskedDown),
              {host::HintKind::Up, FrameOutcome::AskedUp}}) {
            EXPECT_EQ(timesOf(recording.hints, &host::Hint::kind, kind),
                      timesOf(recording.frames, &replay::DecidedFrame::outcome, outcome));
        }
        const Summary summary =
                summarise("trace", timeline, recording, {timeline.startNs, timeline.endNs});
        EXPECT_EQ(summary.of(c.outcome), c.frames);
        EXPECT_EQ(std::accumulate(summary.outcomes.begin(), summary.outcomes.end(), 0),
                  summary.frames);
    }
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

TEST(SummaryTextTest, CountsManyRefreshRates) {
    trace::Timeline timeline = twoLayers();
    for (int64_t i = 1; i <= 4; ++i) {
        timeline.events.push_back({(1500 + 10 * i) * kMs, trace::TimelineEvent::Kind::Period, 0, 0,
                                   0, (i % 2 == 0 ? 20 : 10) * kMs});
    }
    std::ostringstream text;
    print(summarise("trace", timeline, {}, {timeline.startNs, timeline.endNs}), text,
          Legend::Hidden);
    EXPECT_NE(text.str().find("refresh rate  4 changes, 50 Hz for 0.68 s, 100 Hz for 0.02 s ("),
              std::string::npos)
            << text.str();
}

TEST(HintsCsvTest, HasBothClocksAndQuotesTheLayer) {
    replay::Recording recording;
    recording.hints = {{1'000'000'001, host::HintKind::RefreshRate, 4244, 0, 60, 0, 0, 0}};
    recording.hintLayers = {1};
    std::ostringstream csv;
    writeHintsCsv(twoLayers(), recording, {1000 * kMs, 1600 * kMs}, csv);
    EXPECT_NE(csv.str().find("\n0.000000001,1.000000001,refresh_rate,\"b,\"\"c\"\"#2\",4244,0,"
                             "0x0000003c,,,\n"),
              std::string::npos)
            << csv.str();
}

}  // namespace
}  // namespace brevold::report
