#include "replay/plot.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "base/error.h"
#include "base/text.h"
#include "replay/gnuplot.h"
#include "replay/plot_data.h"

namespace brevold::replay {

namespace {

constexpr int kPageWidth = 1600;
constexpr int kPageHeight = 1210;
constexpr int kLeft = 110;
constexpr int kColumns = 1240;
constexpr int kLegendLeft = kLeft + kColumns + 15;
constexpr int kFirstPanelTop = 96;
constexpr int kPanelGap = 34;
constexpr size_t kLongestName = 110;

// Okabe and Ito's colours, which the colour-blind can tell apart.
constexpr const char* kBlack = "#000000";
constexpr const char* kOrange = "#E69F00";
constexpr const char* kSkyBlue = "#56B4E9";
constexpr const char* kGreen = "#009E73";
constexpr const char* kBlue = "#0072B2";
constexpr const char* kVermillion = "#D55E00";
constexpr const char* kPurple = "#CC79A7";
constexpr const char* kGrey = "#999999";

struct Mode {
    const char* label;
    const char* colour;
};
constexpr Mode kModes[] = {{"0: to 27 fps", kVermillion}, {"1: 27 to 32", kOrange},
                           {"2: 47 to 62", kGreen},       {"3: 77 to 92", kSkyBlue},
                           {"4: 107 to 122", kBlue},      {"5: other, idle", kGrey}};

std::string shortened(const std::string& name) {
    if (name.size() <= kLongestName) return name;
    constexpr size_t kHalf = kLongestName / 2;
    return name.substr(0, kHalf) + "..." + name.substr(name.size() - kHalf);
}

double greatest(const PlotPoints& points, double atLeast) {
    for (const PlotPoint& point : points)
        atLeast = std::max(atLeast, point.value);
    return atLeast;
}

class Page {
  public:
    Page(const trace::Timeline& timeline, const PlotData& data)
          : mTimeline(timeline),
            mData(data),
            mEndS(std::max(toSeconds(timeline.endNs - timeline.startNs), 1e-6)) {}

    std::string draw(const std::string& trace, const std::string& terminal) {
        drawIntervals();
        drawDepth();
        drawModes();
        drawDown();
        drawUpAndBoosts();
        drawRate();
        const std::string head =
                "set terminal " + terminal +
                format(" size %d,%d background 'white' noenhanced\nset multiplot\n", kPageWidth,
                       kPageHeight) +
                "set tics nomirror font ',11'\nset grid back lc rgb '#DDDDDD' lt 1\n"
                "set border 3\nset style fill solid noborder\n" +
                format("set format x ''\nset xrange [0:%.9g]\n", mEndS);
        return head + drawTitle(trace) + mPanels + "unset multiplot\n";
    }

  private:
    std::string drawTitle(const std::string& trace) const {
        const trace::Layer& layer = mTimeline.layers[mTimeline.focusedLayer];
        std::string text = format("%d frames in %.2f s; one pixel across is %.3g ms", layer.frames,
                                  mEndS, mEndS * 1e3 / kColumns);
        if (mIsThinned) {
            text += "; where a curve has more than four points in it, its first, last, least and "
                    "greatest are drawn";
        }
        const std::string name = std::filesystem::path(trace).filename().string();
        return label(1, shortened(name), 24, 15) + label(2, shortened(layer.name), 44, 13) +
               label(3, text, 62, 11);
    }

    static std::string label(int tag, const std::string& text, int fromTop, int size) {
        return format("set label %d ", tag) + gnuplotString(text) +
               format(" at screen %.4f, screen %.4f left font ',%d' noenhanced\n", across(kLeft),
                      up(fromTop), size);
    }

    static double across(int px) { return static_cast<double>(px) / kPageWidth; }
    static double up(int fromTopPx) { return 1.0 - static_cast<double>(fromTopPx) / kPageHeight; }

    void beginPanel(const char* title, int heightPx, const std::string& settings) {
        const int bottom = mTop + heightPx;
        mPanels += "unset logscale y\nset ytics autofreq\n" +
                   format("set lmargin at screen %.4f\nset rmargin at screen %.4f\n", across(kLeft),
                          across(kLeft + kColumns)) +
                   format("set tmargin at screen %.4f\nset bmargin at screen %.4f\n", up(mTop),
                          up(bottom)) +
                   format("set key at screen %.4f, screen %.4f left top Left reverse "
                          "samplen 1.5 spacing 1.2 font ',11'\n",
                          across(kLegendLeft), up(mTop - 6)) +
                   label(4, title, mTop - 9, 11) + settings;
        mTop = bottom + kPanelGap;
        mCurves.clear();
    }

    /** Adds a curve to the panel; style as after gnuplot's "with". */
    void curve(const PlotPoints& points, const std::string& style, const std::string& title) {
        const PlotPoints thinned = thin(points, mEndS, kColumns);
        mIsThinned |= thinned.size() < points.size();
        std::string rows;
        for (const PlotPoint& point : thinned) {
            rows += std::isnan(point.value) ? "\n"
                                            : format("%.9g %.9g\n", point.timeS, point.value);
        }
        block(rows, style, title);
    }

    void block(const std::string& rows, const std::string& style, const std::string& title) {
        std::string source = "NaN";  // an empty curve has its place in the legend all the same
        if (!rows.empty()) {
            source = format("$data%d", ++mBlocks);
            mPanels += source + " << END\n" + rows + "END\n";
        }
        mCurves += (mCurves.empty() ? "plot " : ", ") + source + " with " + style + " title " +
                   gnuplotString(title);
    }

    void endPanel() { mPanels += mCurves + "\nunset label\n"; }

    void drawIntervals() {
        PlotPoints intervals = mData.frameIntervalsMs;
        const double ceiling = intervalCeiling();
        PlotPoints longer;
        for (PlotPoint& point : intervals) {
            if (point.value > ceiling) longer.push_back({point.timeS, ceiling});
        }
        intervals.erase(std::remove_if(intervals.begin(), intervals.end(),
                                       [=](const PlotPoint& p) { return p.value > ceiling; }),
                        intervals.end());
        beginPanel("time from frame to frame, ms", 230,
                   format("set yrange [0:%.9g]\n", ceiling * 1.05));
        curve(intervals, format("points pt 7 ps 0.3 lc rgb '%s'", kBlue), "frame interval");
        if (!longer.empty()) {
            curve(longer, format("points pt 8 ps 0.6 lc rgb '%s'", kVermillion),
                  format("longer than %.0f ms: %zu", ceiling, longer.size()));
        }
        curve(mData.periodsMs, format("steps lw 1.5 lc rgb '%s'", kOrange), "refresh period");
        endPanel();
    }

    /** Above most intervals, and within a few periods; the few beyond it are marked at it. */
    double intervalCeiling() const {
        const double periodMs = greatest(mData.periodsMs, 0);
        if (mData.frameIntervalsMs.empty()) return 4 * periodMs;
        std::vector<double> lengths;
        for (const PlotPoint& point : mData.frameIntervalsMs)
            lengths.push_back(point.value);
        const auto high = lengths.begin() + static_cast<ptrdiff_t>(lengths.size() * 97 / 100);
        std::nth_element(lengths.begin(), high, lengths.end());
        return std::clamp(*high * 1.2, 4 * periodMs, 10 * periodMs);
    }

    void drawDepth() {
        const double most = greatest(mData.depths, 1);
        beginPanel(
                "queue depth, frames", 130,
                format("set yrange [0:%.9g]\nset ytics %.0f\n", most + 0.3, std::ceil(most / 5)));
        curve(mData.depths, format("steps lw 1 lc rgb '%s'", kBlue), "queue depth");
        endPanel();
    }

    void drawModes() {
        std::string settings = "set yrange [-0.7:5.7]\nset ytics (";
        for (size_t mode = 0; mode < std::size(kModes); ++mode) {
            settings += format("%s'%s' %zu", mode == 0 ? "" : ", ", kModes[mode].label, mode);
        }
        beginPanel("frame-rate mode, as the library measures it", 130, settings + ") font ',9'\n");
        std::string rows;
        for (size_t i = 1; i < mData.modes.size(); ++i) {
            const PlotPoint& from = mData.modes[i - 1];
            rows += format("%.9g %g %.9g %.9g %g %g 0x%s\n", from.timeS, from.value, from.timeS,
                           mData.modes[i].timeS, from.value - 0.4, from.value + 0.4,
                           kModes[static_cast<size_t>(from.value)].colour + 1);
        }
        if (rows.empty()) {
            mPanels +=
                    "set label 5 'not reported: the library tells its modes only with jank boost "
                    "or energy scaling allowed and vendor.perf.brevold.debug=1' at graph 0.5, "
                    "graph 0.5 center noenhanced\n";
        }
        block(rows, "boxxyerror lw 1 lc rgb variable", "");
        endPanel();
    }

    void drawDown() {
        beginPanel("DOWN requests, scale while they hold", 150,
                   "set yrange [0:1.05]\nset ytics 0.2\n");
        curve(mData.downScales, format("steps lw 1.2 lc rgb '%s'", kGreen),
              format("DOWN: %d", mData.downs));
        endPanel();
    }

    void drawUpAndBoosts() {
        const double most = greatest(mData.upScales, 10);
        beginPanel("UP requests and jank boosts, scale (logarithmic)", 130,
                   format("set yrange [0.9:%.9g]\nset logscale y\n"
                          "set ytics (1, 2, 5, 10, 20, 50, 100)\n",
                          most * 1.6));
        curve(mData.boosts, format("points pt 2 ps 0.5 lc rgb '%s'", kPurple),
              format("jank boost: %zu", mData.boosts.size()));
        curve(mData.upScales, format("points pt 9 ps 0.6 lc rgb '%s'", kVermillion),
              format("UP: %zu", mData.upScales.size()));
        endPanel();
    }

    void drawRate() {
        const double most = greatest(mData.rateHintsHz, greatest(mData.ratesHz, 0));
        beginPanel("refresh rate, Hz", 110,
                   format("set yrange [0:%.9g]\nset ytics 30\n"
                          "set format x '%%g'\nset xlabel 'time from the start of the trace, s' "
                          "font ',12'\n",
                          most * 1.2));
        curve(mData.ratesHz, format("steps lw 1.5 lc rgb '%s'", kBlack), "display");
        curve(mData.rateHintsHz, format("points pt 7 ps 0.6 lc rgb '%s'", kOrange),
              format("refresh-rate hint: %zu", mData.rateHintsHz.size()));
        endPanel();
    }

    const trace::Timeline& mTimeline;
    const PlotData& mData;
    const double mEndS;
    std::string mPanels;
    std::string mCurves;
    int mTop = kFirstPanelTop;
    int mBlocks = 0;
    bool mIsThinned = false;
};

}  // namespace

std::string plotTerminal(const std::string& path) {
    const std::string ending = std::filesystem::path(path).extension();
    if (ending == ".svg") return "svg font 'sans,12' fontscale 1.15";
    if (ending == ".png") return "pngcairo font 'sans,10' pointscale 1.6";
    throw OutputError(path + ": a picture's name must end in .svg or .png");
}

void plot(const std::string& trace, const trace::Timeline& timeline, const Recording& recording,
          const std::string& terminal, std::ostream& out) {
    const PlotData data = plotData(timeline, recording);
    out << runGnuplot(Page(timeline, data).draw(trace, terminal));
}

}  // namespace brevold::replay
