#include "sim/run_plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "base/time_units.h"
#include "plot/gnuplot.h"
#include "plot/plot_thinning.h"

namespace brevold::sim {

using plot::gnuplotString;
using plot::PlotPoints;

namespace {

constexpr int kPageWidthPx = 1600;
constexpr int kLeftPx = 110;
constexpr int kColumns = static_cast<int>(kRunPlotColumns);
constexpr int kHeadingPx = 50;
constexpr int kFootPx = 60;
constexpr int kTitlePx = 26;
constexpr int kGapPx = 26;
constexpr double kMaxPeriods = 3.0;  // on the axis of frame times

// Okabe and Ito's palette, which colour-blind readers can tell apart.
constexpr char kOrange[] = "#E69F00";
constexpr char kGreen[] = "#009E73";
constexpr char kBlue[] = "#0072B2";
constexpr char kVermillion[] = "#D55E00";
constexpr char kPurple[] = "#CC79A7";
constexpr char kPaleGrey[] = "#DDDDDD";

enum PanelHeight { FrameTime = 110, Depth = 50, Frequency = 110, Power = 70, Hints = 90 };
constexpr int kPanelCount = 6;
constexpr int kRunHeightPx =
        kTitlePx + FrameTime + Depth + 2 * Frequency + Power + Hints + (kPanelCount + 1) * kGapPx;

/** Writes panels from top to bottom. */
class Panels {
  public:
    Panels(size_t index, size_t count, double endS)
          : mIndex(index),
            mPageHeightPx(kHeadingPx + static_cast<int>(count) * kRunHeightPx + kFootPx),
            mEndS(endS),
            mTopPx(kHeadingPx + static_cast<int>(index) * kRunHeightPx) {}

    void addTitle(const std::string& title) {
        mTopPx += kTitlePx;
        mScript += label(title, mTopPx - 14, 14);
        mTopPx += kGapPx - 6;
    }

    void begin(const std::string& title, int heightPx, const std::string& settings) {
        mScript += fmt::format("set tmargin at screen {:.5f}\nset bmargin at screen {:.5f}\n",
                               screenY(mTopPx), screenY(mTopPx + heightPx));
        mScript += fmt::format(
                "set key at screen {:.4f}, screen {:.5f} left top Left reverse "
                "samplen 1.5 font ',10'\n",
                static_cast<double>(kLeftPx + kColumns + 15) / kPageWidthPx, screenY(mTopPx - 4));
        mScript += fmt::format("unset logscale y\nset ytics autofreq\nset xrange [0:{:.9g}]\n",
                               mEndS) +
                   label(title, mTopPx - 8, 11);
        mScript += settings;
        mTopPx += heightPx + kGapPx;
        mCurves.clear();
    }

    void addCurve(const PlotPoints& points, const std::string& style, const std::string& title) {
        std::string rows;
        for (const plot::PlotPoint& point : plot::thin(points, 0.0, mEndS, kColumns)) {
            rows += std::isnan(point.value)
                            ? "\n"
                            : fmt::format("{:.9g} {:.6g}\n", point.timeS, point.value);
        }
        addRows(rows, style, title);
    }

    void addRows(const std::string& rows, const std::string& style, const std::string& title) {
        if (rows.empty()) return;
        const std::string block = fmt::format("$run{}data{}", mIndex, ++mBlocks);
        mScript += block + " << END\n" + rows + "END\n";
        mCurves.push_back(fmt::format("{} with {} title {}", block, style, gnuplotString(title)));
    }

    void end() {
        mScript += fmt::format(
                "plot {}\nunset label\n",
                mCurves.empty() ? "NaN notitle" : fmt::format("{}", fmt::join(mCurves, ", ")));
    }

    const std::string& script() const { return mScript; }

  private:
    double screenY(int fromTopPx) const {
        return 1.0 - static_cast<double>(fromTopPx) / mPageHeightPx;
    }
    std::string label(const std::string& text, int fromTopPx, int size) const {
        return fmt::format(
                "set label {} at screen {:.4f}, screen {:.5f} left font ',{}' noenhanced\n",
                gnuplotString(text), static_cast<double>(kLeftPx) / kPageWidthPx,
                screenY(fromTopPx), size);
    }

    const size_t mIndex;
    const int mPageHeightPx;
    const double mEndS;
    int mTopPx;
    int mBlocks = 0;
    std::string mScript;
    std::vector<std::string> mCurves;
};

}  // namespace

std::string runPanels(const Scenario& scenario, const RunCurves& curves, size_t index, size_t count,
                      const std::string& title) {
    const Device& device = scenario.device;
    const double endS = curves.endS;
    const double periodMs = toMs(scenario.workload.periodNs());
    const double limitMs = kMaxPeriods * periodMs;
    const auto line = [](const char* style, const char* colour) {
        return fmt::format("{} lc rgb '{}'", style, colour);
    };
    Panels panels(index, count, endS);
    panels.addTitle(title);

    PlotPoints shorter;
    PlotPoints longer;
    for (const plot::PlotPoint& point : curves.frameTimesMs) {
        (point.value > limitMs ? longer : shorter)
                .push_back({point.timeS, std::min(point.value, limitMs)});
    }
    panels.begin("frame time, ms", FrameTime,
                 fmt::format("set yrange [0:{:.6g}]\n", limitMs * 1.05));
    panels.addCurve(shorter, line("points pt 7 ps 0.3", kBlue), "start to queue");
    panels.addCurve(longer, line("points pt 8 ps 0.6", kVermillion),
                    fmt::format("longer than {:.0f} ms", limitMs));
    panels.addCurve({{0.0, periodMs}, {endS, periodMs}}, line("lines lw 1.5", kOrange),
                    "refresh period");
    panels.end();

    panels.begin("queue depth, frames", Depth, "set yrange [0:*]\nset ytics 1\n");
    panels.addCurve(curves.depths, line("steps", kBlue), "queued");
    panels.end();

    for (const Task task : {Task::App, Task::Compositor}) {
        const bool isApp = task == Task::App;
        const size_t cluster = isApp ? device.appCluster : device.compositorCluster;
        const double maxMhz = device.clusters[cluster].maxMhz();
        panels.begin(fmt::format("frequency of cluster {} ({}), MHz", device.clusters[cluster].name,
                                 isApp ? "application" : "compositor"),
                     Frequency,
                     fmt::format("set yrange [0:{:.6g}]\nset ytics 500\n", maxMhz * 1.05));
        const BoostTarget target = device.service.boost;
        if (target == BoostTarget::All ||
            (target == BoostTarget::Compositor && cluster == device.compositorCluster)) {
            std::string rows;
            for (const RunCurves::Span& span : curves.boosts) {
                rows += fmt::format("{0:.9g} {2:.6g} {0:.9g} {1:.9g} 0 {2:.6g}\n", span.beginS,
                                    span.endS, maxMhz);
            }
            panels.addRows(rows, line("boxxyerror", kPaleGrey), "boost");
        }
        panels.addCurve(curves.frequenciesMhz[cluster], line("steps", kBlue), "frequency");
        if (isApp && device.service.down == DownReading::Cap) {
            PlotPoints caps = curves.downScales;
            for (plot::PlotPoint& cap : caps)
                cap.value *= maxMhz;
            panels.addCurve(caps, line("steps", kVermillion), "cap");
        }
        panels.end();
    }

    panels.begin("power of both clusters, mW, mean of each pixel column", Power,
                 "set yrange [0:*]\nset ytics 500\n");
    panels.addCurve(curves.powerMw, line("steps", kPurple), "power");
    panels.end();

    panels.begin("scale of the hints (logarithmic)", Hints,
                 "set logscale y\nset yrange [0.1:10]\nset ytics (0.1, 0.3, 1, 3, 10)\n"
                 "set format x '%g'\n");
    panels.addCurve(curves.downScales, line("steps", kGreen), "DOWN in effect");
    panels.addCurve(curves.ups, line("points pt 9 ps 0.6", kVermillion), "UP");
    panels.end();
    return panels.script() + "set format x ''\n";
}

std::string runPlotPage(const std::string& terminal, const std::string& heading,
                        const std::vector<std::string>& panels) {
    const int heightPx = kHeadingPx + static_cast<int>(panels.size()) * kRunHeightPx + kFootPx;
    return fmt::format(
            "set terminal {} size {},{} background 'white' noenhanced\nset multiplot\n"
            "set tics nomirror font ',10'\nset grid back lc rgb '{}' lt 1\nset border 3\n"
            "set style fill solid noborder\nset format x ''\n"
            "set lmargin at screen {:.4f}\nset rmargin at screen {:.4f}\n"
            "set label {} at screen {:.4f}, screen {:.5f} left font ',13' noenhanced\n"
            "{}unset multiplot\n",
            terminal, kPageWidthPx, heightPx, kPaleGrey,
            static_cast<double>(kLeftPx) / kPageWidthPx,
            static_cast<double>(kLeftPx + kColumns) / kPageWidthPx, gnuplotString(heading),
            static_cast<double>(kLeftPx) / kPageWidthPx, 1.0 - 26.0 / heightPx,
            fmt::join(panels, ""));
}

}  // namespace brevold::sim
