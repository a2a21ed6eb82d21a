#include "plot/plot_panels.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace brevold::plot {

namespace {

// Okabe and Ito's palette, which colour-blind readers can tell apart.
constexpr const char* kBlack = "#000000";
constexpr const char* kOrange = "#E69F00";
constexpr const char* kSkyBlue = "#56B4E9";
constexpr const char* kGreen = "#009E73";
constexpr const char* kBlue = "#0072B2";
constexpr const char* kVermillion = "#D55E00";
constexpr const char* kPurple = "#CC79A7";
constexpr const char* kGrey = "#999999";

/** A frame-rate mode; the label is short enough for the axis. */
struct ModeBar {
    const char* label;
    const char* colour;
};
constexpr ModeBar kModeBars[] = {{"0: to 27 fps", kVermillion}, {"1: 27 to 32", kOrange},
                                 {"2: 47 to 62", kGreen},       {"3: 77 to 92", kSkyBlue},
                                 {"4: 107 to 122", kBlue},      {"5: other, idle", kGrey}};

double maxValue(const PlotPoints& points, double lowerBound) {
    for (const PlotPoint& point : points)
        lowerBound = std::max(lowerBound, point.value);
    return lowerBound;
}

/** The top of the interval axis: above 97 % of the intervals, but 4 to 10 refresh periods. */
double intervalLimitMs(const PlotData& data) {
    const double periodMs = maxValue(data.periodsMs, 0);
    if (data.frameIntervalsMs.empty()) return 4 * periodMs;
    std::vector<double> intervals;
    for (const PlotPoint& point : data.frameIntervalsMs)
        intervals.push_back(point.value);
    const auto high = intervals.begin() + static_cast<ptrdiff_t>(intervals.size() * 97 / 100);
    std::nth_element(intervals.begin(), high, intervals.end());
    return std::clamp(*high * 1.2, 4 * periodMs, 10 * periodMs);
}

void addIntervalPanel(const PlotData& data, PlotPage* page) {
    const double limitMs = intervalLimitMs(data);
    PlotPoints intervals;
    PlotPoints longer;
    for (const PlotPoint& point : data.frameIntervalsMs) {
        if (point.value > limitMs) {
            longer.push_back({point.timeS, limitMs});
        } else {
            intervals.push_back(point);
        }
    }
    page->beginPanel("frame interval, ms", 230,
                     fmt::format("set yrange [0:{:.9g}]\n", limitMs * 1.05));
    page->addCurve(intervals, fmt::format("points pt 7 ps 0.3 lc rgb '{}'", kBlue),
                   "frame interval");
    if (!longer.empty()) {
        page->addCurve(longer, fmt::format("points pt 8 ps 0.6 lc rgb '{}'", kVermillion),
                       fmt::format("longer than {:.0f} ms: {}", limitMs, longer.size()));
    }
    page->addCurve(data.periodsMs, fmt::format("steps lw 1.5 lc rgb '{}'", kOrange),
                   "refresh period");
    page->endPanel();
}

void addDepthPanel(const PlotData& data, PlotPage* page) {
    const double maxDepth = maxValue(data.depths, 1);
    page->beginPanel("queue depth, frames", 130,
                     fmt::format("set yrange [0:{:.9g}]\nset ytics {:.0f}\n", maxDepth + 0.3,
                                 std::ceil(maxDepth / 5)));
    page->addCurve(data.depths, fmt::format("steps lw 1 lc rgb '{}'", kBlue), "queue depth");
    page->endPanel();
}

void addModePanel(const PlotData& data, PlotPage* page) {
    std::string tics;
    for (size_t mode = 0; mode < std::size(kModeBars); ++mode)
        tics += fmt::format("{}'{}' {}", mode == 0 ? "" : ", ", kModeBars[mode].label, mode);
    page->beginPanel("frame-rate mode measured by the library", 130,
                     fmt::format("set yrange [-0.7:5.7]\nset ytics ({}) font ',9'\n", tics));
    std::string rows;
    for (size_t i = 1; i < data.modes.size(); ++i) {
        const PlotPoint& from = data.modes[i - 1];
        rows += fmt::format("{:.9g} {:g} {:.9g} {:.9g} {:g} {:g} 0x{}\n", from.timeS, from.value,
                            from.timeS, data.modes[i].timeS, from.value - 0.4, from.value + 0.4,
                            kModeBars[static_cast<size_t>(from.value)].colour + 1);
    }
    if (rows.empty()) {
        page->addNote(
                "not reported: needs jank boost or energy scaling allowed, and "
                "vendor.perf.brevold.debug=1");
    }
    page->addRows(rows, "boxxyerror lw 1 lc rgb variable", "");
    page->endPanel();
}

void addDownPanel(const PlotData& data, PlotPage* page) {
    page->beginPanel("scale of DOWN requests while they hold", 150,
                     "set yrange [0:1.05]\nset ytics 0.2\n");
    page->addCurve(data.downScales, fmt::format("steps lw 1.2 lc rgb '{}'", kGreen),
                   fmt::format("DOWN: {}", data.downs));
    page->endPanel();
}

void addUpAndBoostPanel(const PlotData& data, PlotPage* page) {
    page->beginPanel("scale of UP requests and jank boosts (logarithmic)", 130,
                     fmt::format("set yrange [0.9:{:.9g}]\nset logscale y\n"
                                 "set ytics (1, 2, 5, 10, 20, 50, 100)\n",
                                 maxValue(data.upScales, 10) * 1.6));
    page->addCurve(data.boosts, fmt::format("points pt 2 ps 0.5 lc rgb '{}'", kPurple),
                   fmt::format("jank boost: {}", data.boosts.size()));
    page->addCurve(data.upScales, fmt::format("points pt 9 ps 0.6 lc rgb '{}'", kVermillion),
                   fmt::format("UP: {}", data.upScales.size()));
    page->endPanel();
}

void addRatePanel(const PlotData& data, PlotPage* page) {
    const double maxHz = maxValue(data.rateHintsHz, maxValue(data.ratesHz, 0));
    page->beginPanel("refresh rate, Hz", 110,
                     fmt::format("set yrange [0:{:.9g}]\nset ytics 30\n"
                                 "set format x '%g'\n"
                                 "set xlabel 'time since the start of the trace, s' font ',12'\n",
                                 maxHz * 1.2));
    page->addCurve(data.ratesHz, fmt::format("steps lw 1.5 lc rgb '{}'", kBlack), "display");
    page->addCurve(data.rateHintsHz, fmt::format("points pt 7 ps 0.6 lc rgb '{}'", kOrange),
                   fmt::format("refresh-rate hint: {}", data.rateHintsHz.size()));
    page->endPanel();
}

}  // namespace

void addPanels(const PlotData& data, PlotPage* page) {
    addIntervalPanel(data, page);
    addDepthPanel(data, page);
    addModePanel(data, page);
    addDownPanel(data, page);
    addUpAndBoostPanel(data, page);
    addRatePanel(data, page);
}

}  // namespace brevold::plot
