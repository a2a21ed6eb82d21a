#include "plot/plot_page.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "plot/gnuplot.h"
#include "plot/plot_style.h"
#include "plot/plot_text.h"

namespace brevold::plot {

namespace {

constexpr int kPageWidthPx = 1600;
constexpr int kLeftPx = 185;
constexpr int kLegendLeftPx = kLeftPx + kPlotWidthPx + 10;
constexpr int kPanelGapPx = 32;
constexpr int kTimeAxisPx = 55;
constexpr int kFirstLinePx = 24;
constexpr int kLinePx = 19;
constexpr int kHeadingFontSizes[] = {15, 13, 11};
constexpr size_t kMaxLineLength = 150;

class ScriptWriter {
  public:
    ScriptWriter(const PlotPage& page, const std::string& terminal)
          : mPage(page), mTerminal(terminal) {}

    std::string script() {
        mTopPx = kFirstLinePx + static_cast<int>(mPage.heading.size()) * kLinePx + 16;
        mPageHeightPx = mTopPx + kTimeAxisPx - kPanelGapPx;
        for (const PlotPanel& panel : mPage.panels)
            mPageHeightPx += panel.heightPx + kPanelGapPx;
        add("set terminal {} size {},{} background 'white' noenhanced\n", mTerminal, kPageWidthPx,
            mPageHeightPx);
        add("set multiplot\nset tics nomirror font ',10'\nset grid back lc rgb '{}' lt 1\n"
            "set border 3\nset format x ''\n",
            kGridGrey);
        add("set xrange [{:.9g}:{:.9g}]\n", mPage.beginS, mPage.endS);
        const TimeAxis axis = timeAxis(mPage.beginS, mPage.endS);
        addTicks('x', axis.ticks, false);
        addHeading();
        addShade();
        for (const PlotPanel& panel : mPage.panels) {
            if (&panel == &mPage.panels.back()) {
                addTicks('x', axis.ticks, true);
                add("set xlabel 'time since the start of the {}, {}' font ',11'\n",
                    mPage.timeOrigin, axis.unit);
            }
            addPanel(panel);
        }
        return std::move(mScript) + "unset multiplot\n";
    }

  private:
    template <typename... Values>
    void add(fmt::format_string<Values...> format, Values&&... values) {
        fmt::format_to(std::back_inserter(mScript), format, std::forward<Values>(values)...);
    }

    static double screenX(int px) { return static_cast<double>(px) / kPageWidthPx; }
    double screenY(int fromTopPx) const {
        return 1.0 - static_cast<double>(fromTopPx) / mPageHeightPx;
    }

    void addLabel(const std::string& text, int fromTopPx, int fontSize) {
        add("set label {} at screen {:.4f}, screen {:.4f} left font ',{}'\n", gnuplotString(text),
            screenX(kLeftPx), screenY(fromTopPx), fontSize);
    }

    void addHeading() {
        for (size_t i = 0; i < mPage.heading.size(); ++i) {
            const size_t size = std::min(i, std::size(kHeadingFontSizes) - 1);
            addLabel(shortened(mPage.heading[i], kMaxLineLength),
                     kFirstLinePx + static_cast<int>(i) * kLinePx, kHeadingFontSizes[size]);
        }
    }

    /** Rectangles stay for all panels, and are drawn before the grid. */
    void addShade() {
        for (const PlotSpan& span : mPage.shaded) {
            add("set object rectangle from {:.9g}, graph 0 to {:.9g}, graph 1 behind "
                "fs solid noborder fc rgb '{}'\n",
                span.fromS, span.toS, kShade);
        }
    }

    void addTicks(char axis, const std::vector<AxisTick>& ticks, bool isLabelled) {
        add("set {}tics (", axis);
        for (const AxisTick& tick : ticks) {
            add("{}{} {:.9g}", &tick == ticks.data() ? "" : ", ",
                gnuplotString(isLabelled ? tick.label : ""), tick.value);
        }
        add(")\n");
    }

    void addPanel(const PlotPanel& panel) {
        const int bottomPx = mTopPx + panel.heightPx;
        add("{} logscale y\n", panel.isLogarithmic ? "set" : "unset");
        add("set yrange [{:.9g}:{:.9g}]\n", panel.minY, panel.maxY);
        if (panel.ticks.empty()) {
            add("set ytics autofreq\n");
        } else {
            addTicks('y', panel.ticks, true);
        }
        add("set lmargin at screen {:.4f}\nset rmargin at screen {:.4f}\n", screenX(kLeftPx),
            screenX(kLeftPx + kPlotWidthPx));
        add("set tmargin at screen {:.4f}\nset bmargin at screen {:.4f}\n", screenY(mTopPx),
            screenY(bottomPx));
        add("set key at screen {:.4f}, screen {:.4f} left top Left reverse samplen 1.5 "
            "spacing 1.2 font ',10'\n",
            screenX(kLegendLeftPx), screenY(mTopPx - 6));
        addLabel(panel.title, mTopPx - 9, kHeadingFontSizes[2]);
        if (!panel.note.empty()) {
            add("set label {} at graph 0.5, graph 0.6 center front\n", gnuplotString(panel.note));
        }
        addCurves(panel);
        add("unset label\n");
        mTopPx = bottomPx + kPanelGapPx;
    }

    void addCurves(const PlotPanel& panel) {
        std::string plot = "plot NaN notitle";
        for (const PlotCurve& curve : panel.curves) {
            std::string source = "keyentry";
            if (!curve.rows.empty()) {
                const std::string block = fmt::format("$data{}", ++mBlocks);
                add("{} << END\n{}END\n", block, curve.rows);
                source = block + " using " + curve.columns;
            }
            if (curve.rows.empty() && curve.title.empty()) continue;
            plot += fmt::format(
                    ", {} with {} {}", source, curve.style,
                    curve.title.empty() ? "notitle" : "title " + gnuplotString(curve.title));
        }
        add("{}\n", plot);
    }

    const PlotPage& mPage;
    const std::string& mTerminal;
    std::string mScript;
    int mTopPx = 0;
    int mPageHeightPx = 0;
    int mBlocks = 0;
};

}  // namespace

std::string gnuplotScript(const PlotPage& page, const std::string& terminal) {
    return ScriptWriter(page, terminal).script();
}

}  // namespace brevold::plot
