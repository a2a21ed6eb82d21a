// Pictures: ticks, texts, thinned curves, bins, the data of a window, and panels.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "plot/lane_panels.h"
#include "plot/plot_bins.h"
#include "plot/plot_data.h"
#include "plot/plot_text.h"
#include "plot/plot_thinning.h"
#include "plot/scale_panel.h"
#include "plot/time_axis.h"
#include "plot/trace_panels.h"

namespace brevold::plot {
namespace {

TEST(TimeAxisTest, HasRoundTicksInAFittingUnit) {
    // The range, and the unit, the number of ticks, the first two and the last, and its time.
    const std::tuple<double, double, const char*> cases[] = {
            {0, 6, "13 in s: 0.0 0.5 to 6.0 at 6"},
            {2.47, 2.6, "7 in s: 2.48 2.50 to 2.60 at 2.6"},
            {2.5, 2.500001, "11 in s: 2.5000000 2.5000001 to 2.5000010 at 2.500001"},
            {0, 12, "13 in s: 0 1 to 12 at 12"},
            {0, 12.1, "7 in s: 0 2 to 12 at 12"},
            {0, 25, "6 in s: 0 5 to 25 at 25"},
            {3, 179, "8 in s: 20 40 to 160 at 160"},
            {0, 180, "7 in min: 0.0 0.5 to 3.0 at 180"},
            {61, 3661, "12 in min: 5 10 to 60 at 3600"},
            {0, 3661, "7 in min: 0 10 to 60 at 3600"},
            {0, 10 * 3600, "11 in h: 0 1 to 10 at 36000"},
    };
    for (const auto& [beginS, endS, expected] : cases) {
        const auto& [unit, ticks] = timeAxis(beginS, endS);
        EXPECT_EQ(fmt::format("{} in {}: {} {} to {} at {:.8g}", ticks.size(), unit,
                              ticks.at(0).label, ticks.at(1).label, ticks.back().label,
                              ticks.back().value),
                  expected);
    }
}

TEST(PlotTextTest, ShowsDurationsWithThreeDigits) {
    const std::pair<double, const char*> cases[] = {
            {2.5e-7, "0.25 \u00b5s"},
            {0.00025, "250 \u00b5s"},
            {0.00484, "4.84 ms"},
            {0.99999, "1000 ms"},
            {1, "1.00 s"},
            {9.996, "10.0 s"},
            {179, "179 s"},
            {3402, "56.7 min"},
            {36000, "10.0 h"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(durationText(seconds), text);
}

TEST(PlotTextTest, ReplacesUndrawableCharacters) {
    const std::pair<std::string, const char*> cases[] = {
            {"\u03b1 \u65e5 \U0001f600 'x'", "\u03b1 \u65e5 \U0001f600 'x'"},
            {"a\tb\x7f\n", "a?b??"},
            {"\u0085\u009f\u00a0", "??\u00a0"},
            {"a\xff\xe6\x97", "a??"},
            {"\ufffe\uffff\ufffd", "??\ufffd"},
    };
    for (const auto& [text, printed] : cases)
        EXPECT_EQ(printable(text), printed);
    EXPECT_EQ(shortened("\u03b1bcde", 5), "\u03b1bcde");
    EXPECT_EQ(shortened("\u03b1\u03b2cdefgh\u03b9", 5), "\u03b1\u03b2\u2026h\u03b9");
}

TEST(PlotThinningTest, KeepsFirstLastMinAndMaxOfEachColumn) {
    const double kBreak = std::nan("");
    const std::tuple<const char*, PlotPoints, const char*> cases[] = {
            {"none", {}, ""},
            {"a constant value", {{0.1, 7}, {0.2, 7}, {0.9, 7}}, "0.1:7 0.9:7 "},
            {"minimum before maximum",
             {{0.1, 5}, {0.2, 1}, {0.3, 4}, {0.4, 9}, {0.5, 6}, {1.5, 2}},
             "0.1:5 0.2:1 0.4:9 0.5:6 1.5:2 "},
            {"maximum before minimum",
             {{0.1, 5}, {0.2, 9}, {0.3, 4}, {0.4, 1}, {0.5, 6}},
             "0.1:5 0.2:9 0.4:1 0.5:6 "},
            {"a gap of half a column", {{0.7, 1}, {1.2, kBreak}, {1.2, 2}}, "0.7:1 1.2:2 "},
            {"a gap of two columns", {{0.5, 1}, {2.5, kBreak}, {2.5, 2}}, "0.5:1 2.5:nan 2.5:2 "},
    };
    for (const auto& [name, points, expected] : cases) {
        std::string kept;
        for (const PlotPoint& point : thin(points, 0, 10, 10))
            kept += fmt::format("{:g}:{:g} ", point.timeS, std::abs(point.value));
        EXPECT_EQ(kept, expected) << name;
    }
}

std::string textOf(const std::vector<Bin>& bins) {
    std::string text;
    for (const Bin& bin : bins) {
        text += fmt::format("{:g}-{:g}: {:g} {:g} {:g} {:g} {:g}, mean {:g}, weight {:g}; ",
                            bin.fromS, bin.toS, bin.min, bin.percentile5, bin.median,
                            bin.percentile95, bin.max, bin.mean, bin.weight);
    }
    return text;
}

TEST(PlotBinsTest, DescribeTheDistributionOfTheirValues) {
    PlotPoints hundred;
    for (int i = 1; i <= 100; ++i)
        hundred.push_back({2 + i / 101.0, static_cast<double>(101 - i)});
    const BinGrid grid = {2, 5, 3};
    EXPECT_EQ(textOf(binPoints(hundred, grid)), "2-3: 1 5 50 95 100, mean 50.5, weight 100; ");
    EXPECT_EQ(textOf(binPoints({{4, 7}, {5, 9}, {1, 3}}, grid)),
              "2-3: 3 3 3 3 3, mean 3, weight 1; 4-5: 7 7 7 9 9, mean 8, weight 2; ");
    EXPECT_EQ(textOf(binSpans({{2.5, 3.25, 8}, {3.25, 3.25, 5}, {3.25, 3.5, 4}}, grid)),
              "2-3: 8 8 8 8 8, mean 8, weight 0.5; 3-4: 4 4 4 8 8, mean 6, weight 0.5; ");
    EXPECT_EQ(textOf(binSpans({{2.5, 5, 1}}, grid)),
              "2-3: 1 1 1 1 1, mean 1, weight 0.5; 3-4: 1 1 1 1 1, mean 1, weight 1; "
              "4-5: 1 1 1 1 1, mean 1, weight 1; ");
}

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

/** The legend of a panel with the number of rows of each curve. */
std::string legendOf(const PlotPanel& panel) {
    std::string text;
    for (const PlotCurve& curve : panel.curves) {
        text += fmt::format("{}({}) ", curve.title,
                            std::count(curve.rows.begin(), curve.rows.end(), '\n'));
    }
    return text;
}

/** The row of a panel's curve that begins with a time. */
std::string rowAt(const PlotPanel& panel, size_t curve, const std::string& time) {
    const std::string rows = "\n" + panel.curves[curve].rows;
    const size_t begin = rows.find("\n" + time + " ");
    if (begin == std::string::npos) return "";
    return rows.substr(begin + 1, rows.find('\n', begin + 1) - begin - 1);
}

TEST(PlotPanelsTest, ShowTheDistributionOfMorePointsThanPixels) {
    // 580 s, of which the first two have a stall; one bin of two pixels is a second.
    PlotData data = {};
    data.toS = 580;
    data.periodsMs = {{0, 580, 10}};
    data.replays.resize(2);
    ReplayCurves& curves = data.replays[0];
    for (int i = 0; i < 5800; ++i) {
        const double timeS = i / 10.0 + 0.05;
        const bool isLate = i < 20;
        data.frameIntervalsMs.push_back({timeS, isLate && i % 10 == 0 ? 100.0 : 8.0 + i % 5});
        if (isLate || i % 2 == 0) data.missedRefreshes.push_back({timeS, isLate ? 2.0 : 1.0});
        data.depths.push_back({timeS, timeS + 0.1, static_cast<double>(i % 3)});
        curves.modes.push_back({timeS, timeS + 0.1, i % 2 == 0 ? 5.0 : 4.0});
        curves.downs.push_back({timeS, timeS + 0.1, isLate ? 0.0 : 0.5 + 0.1 * (i % 5)});
        curves.ups.push_back({timeS, timeS + 0.05, isLate ? 9.0 : 1.5 + 0.1 * (i % 3)});
        curves.boosts.push_back({timeS, timeS + 0.05, 10});
    }
    const PlotPanel intervals = intervalPanel(data);
    const PlotPanel missed = missedRefreshPanel(data);
    const PlotPanel depths = depthPanel(data);
    const PlotPanel modes = modePanel(data);
    const PlotPanel scales = scalePanel(data);
    const PlotPanel boosts = boostPanel(data);
    EXPECT_EQ(legendOf(intervals),
              "all intervals of 1.00 s(580) 5 % to 95 % of them(580) median(1160) "
              "1 refresh period(2) 2 periods(2) 2 above 22 ms, max 100 ms(2) (1) ");
    EXPECT_EQ(legendOf(missed), "missed: 2930, sum of 2.00 s(290) ");
    EXPECT_GT(missed.maxY, 40);
    EXPECT_NE(modes.title.find("height: share of 1.00 s"), std::string::npos) << modes.title;
    EXPECT_EQ(unclassifiedSpans(data).size(), 2900u);
    EXPECT_EQ(legendOf(scales),
              "extreme of 1.00 s(580) UP: 0, median(580) extreme of 1.00 s(580) "
              "DOWN: 0, median(580) DOWN below 0.0625: 20(8) UP with --vs: 0(0) "
              "DOWN with --vs: 0(0) (2) ");
    EXPECT_EQ(std::pair(scales.minY, scales.maxY), std::pair(0.0625, 16.0));
    const std::tuple<const PlotPanel&, size_t, const char*, const char*> rows[] = {
            {intervals, 0, "0", "0 1 8 22"},    {intervals, 1, "2", "2 3 8 12"},
            {missed, 0, "0", "0 2 0 40"},       {depths, 0, "4", "4 8 0 2"},
            {depths, 1, "572", "572 0.9875"},   {modes, 0, "5", "5 6 5.35 5.625"},  // half of 0.55
            {scales, 0, "0", "0 1 1 9"},        {scales, 1, "5", "5 6 1 1.6"},
            {scales, 2, "5", "5 6 0.5 1"},      {scales, 3, "5", "5 6 0.7 1"},
            {boosts, 0, "5", "5 6 1.35 1.625"},
    };
    for (const auto& [panel, curve, time, row] : rows)
        EXPECT_EQ(rowAt(panel, curve, time), row);
}

TEST(PlotPanelsTest, ScalesIntervalsToThoseOfAnActiveLayer) {
    // The intervals, the refresh periods, the legend of the outliers and the label of the longest.
    using Ms = std::vector<double>;
    const std::tuple<const char*, Ms, Ms, const char*, const char*> cases[] = {
            {"two periods are visible", {5, 5, 23}, {10}, "1 above 22 ms, max 23.0 ms", "23"},
            {"slow frames", {40, 40, 40, 149}, {10}, "1 above 46 ms, max 149 ms", "149"},
            {"idle gaps", {5, 150, 2500}, {10}, "2 above 22 ms, max 2.50 s", "2.50 s"},
            {"the longer period", {5, 112}, {10, 100}, "1 above 110 ms, max 112 ms", "112"},
    };
    for (const auto& [name, intervalsMs, periodsMs, outliers, label] : cases) {
        PlotData data = {};
        data.toS = 10;
        for (const double periodMs : periodsMs)
            data.periodsMs.push_back({0, 10, periodMs});
        for (const double intervalMs : intervalsMs)
            data.frameIntervalsMs.push_back({1, intervalMs});
        const PlotPanel panel = intervalPanel(data);
        EXPECT_EQ(panel.curves[3].title, outliers) << name;
        EXPECT_NE(panel.curves[4].rows.find(fmt::format("\"{}\"", label)), std::string::npos)
                << name << ": " << panel.curves[4].rows;
    }
}

TEST(PlotPanelsTest, MarksShareARowForEachLabel) {
    PlotData data = {};
    data.fromS = 1;
    data.toS = 1161;
    constexpr int64_t kS = 1'000'000'000;
    const PlotPanel panel = markPanel(
            data, {{10 * kS, "late"}, {11 * kS, "early"}, {20 * kS, "late"}, {2 * kS, "late"}},
            5 * kS);
    ASSERT_EQ(panel.curves.size(), 3u);
    EXPECT_EQ(panel.curves[0].rows, "6 7 1.1 1.5\n");
    EXPECT_EQ(panel.curves[1].rows, "5 6 0.1 0.5\n15 16 0.1 0.5\n");
    EXPECT_EQ(panel.curves[2].rows, "1 1.75 \"early: 1\"\n1 0.75 \"late: 2\"\n");
}

}  // namespace
}  // namespace brevold::plot
