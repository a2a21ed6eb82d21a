#include "plot/plot_bins.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>

#include "plot/plot_thinning.h"

namespace brevold::plot {
namespace {

const double kBreak = std::nan("");

TEST(PlotThinningTest, KeepsFirstLastMinAndMaxOfEachColumn) {
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
