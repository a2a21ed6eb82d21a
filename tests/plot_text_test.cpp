#include "plot/plot_text.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "plot/time_axis.h"

namespace brevold::plot {
namespace {

TEST(TimeAxisTest, HasRoundTicksInAFittingUnit) {
    const struct {
        double beginS;
        double endS;
        const char* unit;
        size_t count;
        const char* first;
        const char* second;
        const char* last;
        double lastS;
    } cases[] = {
            {0, 6, "s", 13, "0.0", "0.5", "6.0", 6},
            {2.47, 2.6, "s", 7, "2.48", "2.50", "2.60", 2.6},
            {2.5, 2.500001, "s", 11, "2.5000000", "2.5000001", "2.5000010", 2.500001},
            {0, 12, "s", 13, "0", "1", "12", 12},
            {0, 12.1, "s", 7, "0", "2", "12", 12},
            {0, 25, "s", 6, "0", "5", "25", 25},
            {3, 179, "s", 8, "20", "40", "160", 160},
            {0, 180, "min", 7, "0.0", "0.5", "3.0", 180},
            {61, 3661, "min", 12, "5", "10", "60", 3600},
            {0, 3661, "min", 7, "0", "10", "60", 3600},
            {0, 10 * 3600, "h", 11, "0", "1", "10", 36000},
    };
    for (const auto& c : cases) {
        const TimeAxis axis = timeAxis(c.beginS, c.endS);
        SCOPED_TRACE(fmt::format("from {} to {}", c.beginS, c.endS));
        EXPECT_EQ(axis.unit, c.unit);
        ASSERT_EQ(axis.ticks.size(), c.count);
        EXPECT_EQ(axis.ticks[0].label, c.first);
        EXPECT_EQ(axis.ticks[1].label, c.second);
        EXPECT_EQ(axis.ticks.back().label, c.last);
        EXPECT_NEAR(axis.ticks.back().value, c.lastS, 1e-9);
    }
}

TEST(PlotTextTest, ShowsDurationsWithThreeDigits) {
    const std::pair<double, const char*> cases[] = {{2.5e-7, "0.25 \u00b5s"},
                                                    {0.00025, "250 \u00b5s"},
                                                    {0.00484, "4.84 ms"},
                                                    {0.99999, "1000 ms"},
                                                    {1, "1.00 s"},
                                                    {9.996, "10.0 s"},
                                                    {179, "179 s"},
                                                    {3402, "56.7 min"},
                                                    {36000, "10.0 h"}};
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(durationText(seconds), text);
}

TEST(PlotTextTest, KeepsWhatCanBeDrawn) {
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
