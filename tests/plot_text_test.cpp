#include "plot/plot_text.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace brevold::plot
