#include "plot/plot_page.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace brevold::plot {
namespace {

std::vector<double> numbersAfter(const std::string& word, const std::string& script) {
    std::vector<double> numbers;
    for (size_t at = 0; (at = script.find(word, at)) != std::string::npos; at += word.size())
        numbers.push_back(strtod(script.c_str() + at + word.size(), nullptr));
    return numbers;
}

TEST(PlotPageTest, DrawsEachCurveOfAPanelFromItsOwnData) {
    PlotPage page(0.25, 2);
    page.beginPanel("first", 100, "");
    page.addCurve({{0, 1}, {0.5, 2}}, "lines", "a");
    page.addCurve({}, "points", "it's empty");
    page.addRows("2 3\n", "boxes", "b");
    page.endPanel();
    page.beginPanel("second", 100, "");
    page.addCurve({{0, 4}}, "lines", "c");
    page.endPanel();
    const std::string script = page.script({"trace", "layer", 1}, "svg");
    EXPECT_NE(script.find("$data1 << END\n0 1\n0.5 2\nEND\n$data2 << END\n2 3\nEND\n"
                          "plot $data1 with lines title 'a', NaN with points title 'it''s empty', "
                          "$data2 with boxes title 'b'\n"),
              std::string::npos)
            << script;
    EXPECT_NE(script.find("$data3 << END\n0 4\nEND\nplot $data3 with lines title 'c'\n"),
              std::string::npos)
            << script;

    EXPECT_NE(script.find("set xrange [0.25:2]\n"), std::string::npos);
    EXPECT_NE(script.find("1 frames in 1.75 s"), std::string::npos) << script;

    const std::vector<double> tops = numbersAfter("set tmargin at screen ", script);
    const std::vector<double> bottoms = numbersAfter("set bmargin at screen ", script);
    ASSERT_EQ(tops.size(), 2u);
    ASSERT_EQ(bottoms.size(), 2u);
    EXPECT_GT(tops[0], bottoms[0]);
    EXPECT_GT(bottoms[0], tops[1]);
    EXPECT_GT(tops[1], bottoms[1]);
    EXPECT_GT(bottoms[1], 0);
}

}  // namespace
}  // namespace brevold::plot
