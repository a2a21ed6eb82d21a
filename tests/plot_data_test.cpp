#include "replay/plot_data.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace brevold::replay {
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
    Recording recording;
    recording.modes = {{1000 * kMs, 5}, {2500 * kMs, 2}};
    recording.hints = {hintAt(1400, host::HintKind::Down, 0, 0.5),
                       hintAt(1450, host::HintKind::Down, 0, 0.25),
                       hintAt(1700, host::HintKind::Down, 0, 0.75),
                       hintAt(1800, host::HintKind::Up, 0, 1.5),
                       hintAt(1900, host::HintKind::JankBoost, 0, 10),
                       hintAt(1950, host::HintKind::Release, 1, 0),
                       hintAt(2000, host::HintKind::RefreshRate, 60, 0)};
    const PlotData data = plotData(timeline, recording);
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
}

}  // namespace
}  // namespace brevold::replay
