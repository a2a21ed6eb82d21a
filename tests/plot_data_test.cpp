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
                       {1300 * kMs, Kind::Frame, 1, 1, 0, 0},
                       {2000 * kMs, Kind::Period, 0, 0, 0, 20 * kMs}};
    replay::Recording recording;
    recording.modes = {{1000 * kMs, 5}, {2500 * kMs, 2}};
    recording.hints = {hintAt(1400, host::HintKind::Down, 0, 0.5),
                       hintAt(1450, host::HintKind::Down, 0, 0.25),
                       hintAt(1700, host::HintKind::Down, 0, 0.75),
                       hintAt(1800, host::HintKind::Up, 0, 1.5),
                       hintAt(1900, host::HintKind::JankBoost, 0, 10),
                       hintAt(1950, host::HintKind::Release, 1, 0),
                       hintAt(2000, host::HintKind::RefreshRate, 60, 0)};
    const PlotData data = plotData(timeline, recording, {timeline.startNs, timeline.endNs});
    EXPECT_EQ(data.layers, std::vector<std::string>{"focused#2"});
    EXPECT_EQ(data.frames, 2);
    EXPECT_EQ(textOf(data.frameIntervalsMs), "0.3:200");
    EXPECT_EQ(textOf(data.depths), "0:0 0.1:1 0.2:0 0.3:1 2:1");
    EXPECT_EQ(textOf(data.periodsMs), "0:10 1:20 2:20");
    EXPECT_EQ(textOf(data.ratesHz), "0:100 1:50 2:50");
    EXPECT_EQ(textOf(data.modes), "0:5 1.5:2 2:2");
    EXPECT_EQ(textOf(data.downScales),
              "0.4:0.5 0.45:0.5 0.45:0.25 0.55:0.25 0.7:nan 0.7:0.75 0.8:0.75");
    EXPECT_EQ(data.downs, 3);
    EXPECT_EQ(textOf(data.upScales), "0.8:1.5");
    EXPECT_EQ(textOf(data.boosts), "0.9:10");
    EXPECT_EQ(textOf(data.rateHintsHz), "1:60");

    // The values at the start of a window are those before it; the other layer gets the focus.
    timeline.events.insert(timeline.events.end() - 1, {1500 * kMs, Kind::Focus, 0, 0, 0, 0});
    const PlotData part = plotData(timeline, recording, {1250 * kMs, 1825 * kMs});
    EXPECT_EQ(part.fromS, 0.25);
    EXPECT_EQ(part.toS, 0.825);
    EXPECT_EQ(part.layers, (std::vector<std::string>{"focused#2", "other#1"}));
    EXPECT_EQ(part.frames, 1);
    EXPECT_EQ(textOf(part.frameIntervalsMs), "0.3:200");
    EXPECT_EQ(textOf(part.depths), "0.25:0 0.3:1 0.5:7 0.825:7");
    EXPECT_EQ(textOf(part.periodsMs), "0.25:10 0.825:10");
    EXPECT_EQ(textOf(part.modes), "0.25:5 0.825:5");
    EXPECT_EQ(part.downs, 3);
    EXPECT_EQ(textOf(part.upScales), "0.8:1.5");
    EXPECT_EQ(textOf(part.boosts), "");

    const PlotData end = plotData(timeline, recording, {1425 * kMs, 1750 * kMs});
    EXPECT_EQ(textOf(end.downScales),
              "0.425:0.5 0.45:0.5 0.45:0.25 0.55:0.25 0.7:nan 0.7:0.75 0.75:0.75");
    EXPECT_EQ(end.downs, 2);
    EXPECT_EQ(textOf(end.frameIntervalsMs), "");
}

}  // namespace
}  // namespace brevold::plot
