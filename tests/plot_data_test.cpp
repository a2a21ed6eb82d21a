#include "plot/plot_data.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace brevold::plot {
namespace {

constexpr int64_t kMs = 1'000'000;

/** "0:1 0.5:2": times and values. */
std::string textOf(const PlotPoints& points) {
    std::string text;
    for (const PlotPoint& point : points)
        text += fmt::format("{}{:g}:{:g}", text.empty() ? "" : " ", point.timeS, point.value);
    return text;
}

/** "0-0.5:2": times and values. */
std::string textOf(const PlotSpans& spans) {
    std::string text;
    for (const PlotSpan& span : spans) {
        text += fmt::format("{}{:g}-{:g}:{:g}", text.empty() ? "" : " ", span.fromS, span.toS,
                            span.value);
    }
    return text;
}

host::Hint hintAt(int64_t ms, host::HintKind kind, uint32_t type, double scale) {
    return {ms * kMs, kind, 0, 100, type, scale, 0, 0};
}

TEST(PlotDataTest, HasACurveForEachQuantity) {
    using Kind = trace::TimelineEvent::Kind;
    trace::Timeline timeline;
    timeline.layers = {{"other#1", 1}, {"focused#2", 2}};
    timeline.focusedLayer = 1;
    timeline.startNs = 1000 * kMs;
    timeline.endNs = 3000 * kMs;
    timeline.events = {{1000 * kMs, Kind::Period, 0, 0, 0, 10 * kMs},
                       {1100 * kMs, Kind::Frame, 1, 1, 0, 0},
                       {1150 * kMs, Kind::Frame, 0, 7, 0, 0},
                       {1200 * kMs, Kind::Depth, 1, 0, 0, 0},
                       {1210 * kMs, Kind::Frame, 1, 1, 0, 0},
                       {1220 * kMs, Kind::Depth, 1, 0, 0, 0},
                       {1225 * kMs, Kind::Frame, 1, 1, 0, 0},
                       {1227 * kMs, Kind::Depth, 1, 2, 0, 0},
                       {1270 * kMs, Kind::Depth, 1, 1, 0, 0},
                       {1300 * kMs, Kind::Frame, 1, 2, 0, 0},
                       {1500 * kMs, Kind::Focus, 0, 0, 0, 0},
                       {2000 * kMs, Kind::Period, 0, 0, 0, 20 * kMs}};
    replay::Recording recording;
    recording.modes = {{1000 * kMs, 5}, {2500 * kMs, 2}};
    recording.verdictTimesNs = {1990 * kMs, 2000 * kMs};
    recording.hints = {hintAt(1400, host::HintKind::Down, 0, 0.5),
                       hintAt(1450, host::HintKind::Down, 0, 0.25),
                       hintAt(1700, host::HintKind::Down, 0, 0.75),
                       hintAt(1800, host::HintKind::Up, 0, 1.5),
                       hintAt(1900, host::HintKind::JankBoost, 0, 10),
                       hintAt(1950, host::HintKind::Release, 1, 0),
                       hintAt(2000, host::HintKind::RefreshRate, 60, 0)};
    const replay::Recording silent;
    const struct {
        int64_t fromMs;
        int64_t toMs;
        const char* layers;
        const char* figures;  // the window, frames, DOWN, UP and boosts that were sent
        const char* intervals;
        const char* missed;
        const char* depths;
        const char* periods;
        const char* modes;
        const char* downs;
        const char* ups;
        const char* boosts;
        const char* verdicts;
        const char* rates;
    } windows[] = {
            {1000, 3000, "focused#2 other#1", "0-2 s, 4 frames from 0.1 to 0.3, sent 3 1 1",
             "0.21:110 0.225:15 0.3:75", "0.27:3",
             "0-0.1:0 0.1-0.2:1 0.2-0.21:0 0.21-0.22:1 0.22-0.225:0 0.225-0.227:1 0.227-0.27:2 "
             "0.27-0.3:1 0.3-0.5:2 0.5-2:7",
             "0-1:10 1-2:20", "0-1.5:5 1.5-2:2", "0.4-0.45:0.5 0.45-0.55:0.25 0.7-0.8:0.75",
             "0.8-0.9:1.5", "0.9-0.95:10", "0.99-1:1 1-1.02:1", "1:60"},
            // The values at the start of a window are those before it.
            {1250, 1825, "focused#2 other#1", "0.25-0.825 s, 1 frames from 0.3 to 0.3, sent 3 1 0",
             "0.3:75", "0.27:3", "0.25-0.27:2 0.27-0.3:1 0.3-0.5:2 0.5-0.825:7", "0.25-0.825:10",
             "0.25-0.825:5", "0.4-0.45:0.5 0.45-0.55:0.25 0.7-0.8:0.75", "0.8-0.825:1.5", "", "",
             ""},
            // Requests and verdicts that began before it, and a layer without frames.
            {1925, 1995, "other#1", "0.925-0.995 s, 0 frames from 0 to 0, sent 0 0 0", "", "",
             "0.925-0.995:7", "0.925-0.995:10", "0.925-0.995:5", "", "", "0.925-0.95:10",
             "0.99-0.995:1", ""},
    };
    for (const auto& expected : windows) {
        const PlotData data = plotData(timeline, {&recording, &silent},
                                       {expected.fromMs * kMs, expected.toMs * kMs});
        SCOPED_TRACE(expected.figures);
        EXPECT_EQ(fmt::format("{}", fmt::join(data.layers, " ")), expected.layers);
        const ReplayCurves& curves = data.replays[0];
        EXPECT_EQ(fmt::format("{:g}-{:g} s, {} frames from {:g} to {:g}, sent {} {} {}", data.fromS,
                              data.toS, data.frames, data.firstFrameS, data.lastFrameS,
                              curves.downCount, curves.upCount, curves.boostCount),
                  expected.figures);
        EXPECT_EQ(textOf(data.frameIntervalsMs), expected.intervals);
        EXPECT_EQ(textOf(data.missedRefreshes), expected.missed);
        EXPECT_EQ(textOf(data.depths), expected.depths);
        EXPECT_EQ(textOf(data.periodsMs), expected.periods);
        EXPECT_EQ(textOf(curves.modes), expected.modes);
        EXPECT_EQ(textOf(curves.downs), expected.downs);
        EXPECT_EQ(textOf(curves.ups), expected.ups);
        EXPECT_EQ(textOf(curves.boosts), expected.boosts);
        EXPECT_EQ(textOf(curves.verdicts), expected.verdicts);
        EXPECT_EQ(textOf(curves.rateHintsHz), expected.rates);
        EXPECT_EQ(data.replays.size(), 2u);
        EXPECT_EQ(textOf(data.replays[1].downs), "");
    }
}

}  // namespace
}  // namespace brevold::plot
