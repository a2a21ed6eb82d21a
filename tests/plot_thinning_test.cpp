#include "plot/plot_thinning.h"

#include <gtest/gtest.h>

#include <cmath>

namespace brevold::plot {
namespace {

TEST(PlotThinningTest, KeepsFirstLastMinAndMaxOfEachColumn) {
    const double kBreak = std::nan("");
    const struct {
        const char* name;
        PlotPoints points;
        PlotPoints kept;
    } cases[] = {
            {"none", {}, {}},
            {"a constant value", {{0.1, 7}, {0.2, 7}, {0.9, 7}}, {{0.1, 7}, {0.9, 7}}},
            {"minimum before maximum",
             {{0.1, 5}, {0.2, 1}, {0.3, 4}, {0.4, 9}, {0.5, 6}, {1.5, 2}},
             {{0.1, 5}, {0.2, 1}, {0.4, 9}, {0.5, 6}, {1.5, 2}}},
            {"maximum before minimum",
             {{0.1, 5}, {0.2, 9}, {0.3, 4}, {0.4, 1}, {0.5, 6}},
             {{0.1, 5}, {0.2, 9}, {0.4, 1}, {0.5, 6}}},
            {"a gap of half a column", {{0.7, 1}, {1.2, kBreak}, {1.2, 2}}, {{0.7, 1}, {1.2, 2}}},
            {"a gap of two columns",
             {{0.5, 1}, {2.5, kBreak}, {2.5, 2}},
             {{0.5, 1}, {2.5, kBreak}, {2.5, 2}}},
    };
    for (const auto& c : cases) {
        const PlotPoints kept = thin(c.points, 0, 10, 10);
        ASSERT_EQ(kept.size(), c.kept.size()) << c.name;
        for (size_t i = 0; i < kept.size(); ++i) {
            EXPECT_EQ(kept[i].timeS, c.kept[i].timeS) << c.name << ", point " << i;
            EXPECT_TRUE(kept[i].value == c.kept[i].value || std::isnan(c.kept[i].value))
                    << c.name << ", point " << i;
        }
    }
}

}  // namespace
}  // namespace brevold::plot
