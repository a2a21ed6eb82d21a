// The parts of a picture: ticks, texts, curves with fewer points than pixels, and bins.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>

#include "plot/plot_bins.h"
#include "plot/plot_text.h"
#include "plot/plot_thinning.h"
#include "plot/time_axis.h"

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

}  // namespace
}  // namespace brevold::plot
