#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "plot/lane_panels.h"
#include "plot/scale_panel.h"
#include "plot/trace_panels.h"

namespace brevold::plot {
namespace {

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
