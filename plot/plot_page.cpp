#include "plot/plot_page.h"

#include <fmt/format.h>

#include <cmath>
#include <filesystem>

#include "plot/gnuplot.h"
#include "plot/plot_thinning.h"

namespace brevold::plot {

namespace {

constexpr int kPageWidthPx = 1600;
constexpr int kPageHeightPx = 1210;
constexpr int kLeftPx = 110;
constexpr int kPlotWidthPx = 1240;
constexpr int kLegendLeftPx = kLeftPx + kPlotWidthPx + 15;
constexpr int kPanelGapPx = 34;
constexpr size_t kMaxNameLength = 110;

std::string shortened(const std::string& name) {
    if (name.size() <= kMaxNameLength) return name;
    constexpr size_t kHalf = kMaxNameLength / 2;
    return name.substr(0, kHalf) + "..." + name.substr(name.size() - kHalf);
}

double screenX(int px) {
    return static_cast<double>(px) / kPageWidthPx;
}

double screenY(int fromTopPx) {
    return 1.0 - static_cast<double>(fromTopPx) / kPageHeightPx;
}

std::string label(int tag, const std::string& text, int fromTopPx, int fontSize) {
    return fmt::format(
            "set label {} {} at screen {:.4f}, screen {:.4f} left font ',{}' noenhanced\n", tag,
            gnuplotString(text), screenX(kLeftPx), screenY(fromTopPx), fontSize);
}

}  // namespace

void PlotPage::beginPanel(const char* title, int heightPx, const std::string& settings) {
    const int bottomPx = mTopPx + heightPx;
    mPanels += "unset logscale y\nset ytics autofreq\n";
    mPanels += fmt::format("set lmargin at screen {:.4f}\nset rmargin at screen {:.4f}\n",
                           screenX(kLeftPx), screenX(kLeftPx + kPlotWidthPx));
    mPanels += fmt::format("set tmargin at screen {:.4f}\nset bmargin at screen {:.4f}\n",
                           screenY(mTopPx), screenY(bottomPx));
    mPanels += fmt::format(
            "set key at screen {:.4f}, screen {:.4f} left top Left reverse samplen 1.5 spacing 1.2 "
            "font ',11'\n",
            screenX(kLegendLeftPx), screenY(mTopPx - 6));
    mPanels += label(4, title, mTopPx - 9, 11) + settings;
    mTopPx = bottomPx + kPanelGapPx;
    mCurves.clear();
}

void PlotPage::endPanel() {
    mPanels += mCurves + "\nunset label\n";
}

void PlotPage::addCurve(const PlotPoints& points, const std::string& style,
                        const std::string& title) {
    const PlotPoints thinned = thin(points, mBeginS, mEndS, kPlotWidthPx);
    mIsThinned |= thinned.size() < points.size();
    std::string rows;
    for (const PlotPoint& point : thinned) {
        rows += std::isnan(point.value) ? "\n"
                                        : fmt::format("{:.9g} {:.9g}\n", point.timeS, point.value);
    }
    addRows(rows, style, title);
}

void PlotPage::addRows(const std::string& rows, const std::string& style,
                       const std::string& title) {
    std::string source = "NaN";  // keeps an empty curve in the legend
    if (!rows.empty()) {
        source = fmt::format("$data{}", ++mBlocks);
        mPanels += source + " << END\n" + rows + "END\n";
    }
    mCurves += fmt::format("{}{} with {} title {}", mCurves.empty() ? "plot " : ", ", source, style,
                           gnuplotString(title));
}

void PlotPage::addNote(const std::string& text) {
    mPanels += fmt::format("set label 5 {} at graph 0.5, graph 0.5 center noenhanced\n",
                           gnuplotString(text));
}

std::string PlotPage::script(const PlotHeading& heading, const std::string& terminal) const {
    return fmt::format(
                   "set terminal {} size {},{} background 'white' noenhanced\nset multiplot\n"
                   "set tics nomirror font ',11'\nset grid back lc rgb '#DDDDDD' lt 1\n"
                   "set border 3\nset style fill solid noborder\n"
                   "set format x ''\nset xrange [{:.9g}:{:.9g}]\n",
                   terminal, kPageWidthPx, kPageHeightPx, mBeginS, mEndS) +
           headingScript(heading) + mPanels + "unset multiplot\n";
}

std::string PlotPage::headingScript(const PlotHeading& heading) const {
    std::string text =
            fmt::format("{} frames in {:.2f} s; one pixel is {:.3g} ms wide", heading.frames,
                        mEndS - mBeginS, (mEndS - mBeginS) * 1e3 / kPlotWidthPx);
    if (mIsThinned) {
        text += "; where a curve has more than four points in a pixel column, the first, last, "
                "minimum and maximum are drawn";
    }
    const std::string trace = std::filesystem::path(heading.trace).filename().string();
    return label(1, shortened(trace), 24, 15) + label(2, shortened(heading.layers), 44, 13) +
           label(3, text, 62, 11);
}

}  // namespace brevold::plot
