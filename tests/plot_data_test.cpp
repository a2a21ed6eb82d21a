#include "plot/plot_data.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace brevold::plot {
namespace {

constexpr int64_t kMs = 1'000'000;

/** "0:1 0.5:2": times and values. */
std::string textOf(const PlotPoints& points) {
    std::vector<std::string> texts;
    for (const auto& [timeS, value] : points)
        texts.push_back(fmt::format("{:g}:{:g}", timeS, value));
    return fmt::format("{}", fmt::join(texts, " "));
}

/** "0-0.5:2": times and values. */
std::string textOf(const PlotSpans& spans) {
    std::vector<std::string> texts;
    for (const auto& [fromS, toS, value] : spans)
        texts.push_back(fmt::format("{:g}-{:g}:{:g}", fromS, toS, value));
    return fmt::format("{}", fmt::join(texts, " "));
}

std::string textOf(const PlotData& data) {
    const ReplayCurves& curves = data.replays[0];
    return fmt::format("{:g}-{:g} s, {}, {} frames from {:g} to {:g}, sent {} {} {}\n", data.fromS,
                       data.toS, fmt::join(data.layers, " "), data.frames, data.firstFrameS,
                       data.lastFrameS, curves.downCount, curves.upCount, curves.boostCount) +
           fmt::format("intervals {}, missed {}\ndepths {}\nperiods {}, modes {}\n",
                       textOf(data.frameIntervalsMs), textOf(data.missedRefreshes),
                       textOf(data.depths), textOf(data.periodsMs), textOf(curves.modes)) +
           fmt::format("DOWN {}, UP {}\nboosts {}, verdicts {}, rates {}\nsilent: {}",
                       textOf(curves.downs), textOf(curves.ups), textOf(curves.boosts),
                       textOf(curves.verdicts), textOf(curves.rateHintsHz),
                       textOf(data.replays.at(1).downs));
}

TEST(PlotDataTest, HasACurveForEachQuantity) {
    using Kind = trace::TimelineEvent::Kind;
    trace::Timeline timeline;
    timeline.layers = {{"other#1", 1}, {"focused#2", 2}};
    timeline.focusedLayer = 1;
    timeline.startNs = 1000 * kMs;
    timeline.endNs = 3000 * kMs;
    // Time in ms, kind, layer, depth, period in ms.
    const std::tuple<int64_t, Kind, int32_t, int32_t, int64_t> events[] = {
            {1000, Kind::Period, 0, 0, 10}, {1100, Kind::Frame, 1, 1, 0},
            {1150, Kind::Frame, 0, 7, 0},   {1200, Kind::Depth, 1, 0, 0},
            {1210, Kind::Frame, 1, 1, 0},   {1220, Kind::Depth, 1, 0, 0},
            {1225, Kind::Frame, 1, 1, 0},   {1227, Kind::Depth, 1, 2, 0},
            {1270, Kind::Depth, 1, 1, 0},   {1300, Kind::Frame, 1, 2, 0},
            {1500, Kind::Focus, 0, 0, 0},   {2000, Kind::Period, 0, 0, 20}};
    for (const auto& [timeMs, kind, layer, depth, periodMs] : events)
        timeline.events.push_back({timeMs * kMs, kind, layer, depth, 0, periodMs * kMs});
    replay::Recording recording;
    recording.modes = {{1000 * kMs, 5}, {2500 * kMs, 2}};
    recording.verdictTimesNs = {1990 * kMs, 2000 * kMs};
    const std::tuple<int64_t, host::HintKind, uint32_t, double> hints[] = {
            {1400, host::HintKind::Down, 0, 0.5},      {1450, host::HintKind::Down, 0, 0.25},
            {1700, host::HintKind::Down, 0, 0.75},     {1800, host::HintKind::Up, 0, 1.5},
            {1900, host::HintKind::JankBoost, 0, 10},  {1950, host::HintKind::Release, 1, 0},
            {2000, host::HintKind::RefreshRate, 60, 0}};
    for (const auto& [timeMs, kind, type, scale] : hints)
        recording.hints.push_back({timeMs * kMs, kind, 0, 100, type, scale, 0, 0});
    const replay::Recording silent;
    const std::tuple<int64_t, int64_t, const char*> windows[] = {
            {1000, 3000,
             "0-2 s, focused#2 other#1, 4 frames from 0.1 to 0.3, sent 3 1 1\n"
             "intervals 0.21:110 0.225:15 0.3:75, missed 0.27:3\n"
             "depths 0-0.1:0 0.1-0.2:1 0.2-0.21:0 0.21-0.22:1 0.22-0.225:0 0.225-0.227:1 "
             "0.227-0.27:2 0.27-0.3:1 0.3-0.5:2 0.5-2:7\n"
             "periods 0-1:10 1-2:20, modes 0-1.5:5 1.5-2:2\n"
             "DOWN 0.4-0.45:0.5 0.45-0.55:0.25 0.7-0.8:0.75, UP 0.8-0.9:1.5\n"
             "boosts 0.9-0.95:10, verdicts 0.99-1:1 1-1.02:1, rates 1:60\n"
             "silent: "},
            // The values at the start of a window are those before it.
            {1250, 1825,
             "0.25-0.825 s, focused#2 other#1, 1 frames from 0.3 to 0.3, sent 3 1 0\n"
             "intervals 0.3:75, missed 0.27:3\n"
             "depths 0.25-0.27:2 0.27-0.3:1 0.3-0.5:2 0.5-0.825:7\n"
             "periods 0.25-0.825:10, modes 0.25-0.825:5\n"
             "DOWN 0.4-0.45:0.5 0.45-0.55:0.25 0.7-0.8:0.75, UP 0.8-0.825:1.5\n"
             "boosts , verdicts , rates \nsilent: "},
            // Requests and verdicts that began before it, and a layer without frames.
            {1925, 1995,
             "0.925-0.995 s, other#1, 0 frames from 0 to 0, sent 0 0 0\n"
             "intervals , missed \ndepths 0.925-0.995:7\n"
             "periods 0.925-0.995:10, modes 0.925-0.995:5\nDOWN , UP \n"
             "boosts 0.925-0.95:10, verdicts 0.99-0.995:1, rates \nsilent: "},
    };
    for (const auto& [fromMs, toMs, expected] : windows) {
        const PlotData data = plotData(timeline, {&recording, &silent}, {fromMs * kMs, toMs * kMs});
        EXPECT_EQ(textOf(data), expected);
    }
}

}  // namespace
}  // namespace brevold::plot
