// Pictures: ticks, texts, thinned curves and panels.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "plot/lane_panels.h"
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
