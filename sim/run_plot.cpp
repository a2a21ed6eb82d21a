#include "sim/run_plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cereal/archives/binary.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>
#include <cmath>
#include <iterator>
#include <sstream>

#include "base/time_units.h"
#include "plot/plot_curves.h"
#include "plot/plot_style.h"
#include "sim/experiment.h"

namespace brevold::plot {

// A run, and so its panels, are made in a process of their own.

template <typename Archive>
void serialize(Archive& archive, AxisTick& tick) {
    archive(tick.value, tick.label);
}

template <typename Archive>
void serialize(Archive& archive, PlotCurve& curve) {
    archive(curve.rows, curve.columns, curve.style, curve.title);
}

template <typename Archive>
void serialize(Archive& archive, PlotPanel& panel) {
    archive(panel.title, panel.heightPx, panel.minY, panel.maxY, panel.isLogarithmic, panel.ticks,
            panel.curves, panel.note);
}

}  // namespace brevold::plot

namespace brevold::sim {

namespace {

using plot::Bin;
using plot::BinGrid;
using plot::boxes;
using plot::CurveMaker;
using plot::filled;
using plot::line;
using plot::PlotBox;
using plot::PlotPage;
using plot::PlotPanel;
using plot::PlotPoint;
using plot::PlotPoints;
using plot::PlotSpan;
using plot::PlotSpans;

// On the axis of frame times.
constexpr double kMinPeriods = 1.2;
constexpr double kMaxPeriods = 3.0;
constexpr double kMinScale = 0.1;
constexpr double kMaxScale = 10.0;
constexpr int kBinPx = 4;
constexpr int kMinFramePx = 3;  // without bins

/** Draws values that hold for spans of time: each of them, or bins if there are too many. */
class Bands {
  public:
    Bands(const CurveMaker& maker, const RunCurves& curves, double periodS)
          : mMaker(maker),
            mGrid(gridOf(maker.grid(kBinPx), periodS)),
            mIsDense(CurveMaker::isDense(curves.frameTimesMs.size(), kMinFramePx)) {}

    /** Draws the values; of bins, the range and the mean. */
    void add(const PlotSpans& spans, const char* colour, const char* paleColour,
             const std::string& title, PlotPanel& panel) const {
        if (mIsDense) {
            std::vector<PlotBox> ranges;
            for (const Bin& bin : binSpans(spans, mGrid))
                ranges.push_back({bin.fromS, bin.toS, bin.min, bin.max});
            panel.curves.push_back(boxes(ranges, filled(paleColour), title + ", min to max"));
        }
        addValues(spans, colour, title, panel);
    }

    /** Draws the values; of bins, the mean. */
    void addValues(const PlotSpans& spans, const char* colour, const std::string& title,
                   PlotPanel& panel) const {
        if (mIsDense) {
            addMeans(spans, colour, title, panel);
        } else {
            panel.curves.push_back(mMaker.steps(spans, line(1, colour), title));
        }
    }

    /** Draws the mean of bins. */
    void addMeans(const PlotSpans& spans, const char* colour, const std::string& title,
                  PlotPanel& panel) const {
        PlotSpans means;
        for (const Bin& bin : binSpans(spans, mGrid))
            means.push_back({bin.fromS, bin.toS, bin.mean});
        panel.curves.push_back(mMaker.steps(means, line(1.5, colour), title + ", mean"));
    }

    /** Draws boxes of this height; of bins, the share of the time. */
    void addBoxes(const PlotSpans& spans, double height, const std::string& title,
                  PlotPanel& panel) const {
        PlotSpans parts = spans;
        if (mIsDense) {
            parts.clear();
            for (const Bin& bin : binSpans(spans, mGrid))
                parts.push_back({bin.fromS, bin.toS, std::min(bin.weight / mGrid.widthS(), 1.0)});
        }
        std::vector<PlotBox> rectangles;
        for (const PlotSpan& part : parts)
            rectangles.push_back({part.fromS, part.toS, 0, height * part.value});
        panel.curves.push_back(boxes(rectangles, filled(plot::kPaleVermillion),
                                     mIsDense ? title + ", share of time" : title));
    }

  private:
    /** Bins of whole refresh periods: the means of parts of a period would beat. */
    static BinGrid gridOf(const BinGrid& bins, double periodS) {
        const double widthS = std::ceil(bins.widthS() / periodS) * periodS;
        const double count = std::max(std::floor((bins.endS - bins.beginS) / widthS), 1.0);
        return {bins.beginS, bins.beginS + count * widthS, static_cast<int32_t>(count)};
    }

    const CurveMaker& mMaker;
    const BinGrid mGrid;
    const bool mIsDense;
};

double maxValue(const PlotSpans& spans, double atLeast) {
    for (const PlotSpan& span : spans)
        atLeast = std::max(atLeast, span.value);
    return atLeast;
}

PlotPanel frameTimePanel(const RunCurves& curves, double periodMs, const CurveMaker& maker) {
    const double limitMs = kMaxPeriods * periodMs;
    double maxMs = kMinPeriods * periodMs;
    PlotPoints shorter;
    PlotPoints longer;
    for (const PlotPoint& point : curves.frameTimesMs) {
        (point.value > limitMs ? longer : shorter).push_back(point);
        maxMs = std::max(maxMs, std::min(point.value, limitMs) * 1.1);
    }
    PlotPanel panel = {"time from the start of a frame to its queueing, ms", 130, 0, maxMs};
    panel.curves = {maker.points(shorter, plot::marker(7, 0.3, plot::kBlue), "frame"),
                    maker.steps({{curves.beginS, curves.endS, periodMs}}, line(1.5, plot::kOrange),
                                "1 refresh period")};
    if (!longer.empty()) {
        panel.curves.push_back(
                maker.edgeMarks(longer, limitMs * 1.05, plot::marker(9, 0.8, plot::kVermillion),
                                fmt::format("{} above {:.0f} ms", longer.size(), limitMs)));
    }
    return panel;
}

PlotPanel depthPanel(const RunCurves& curves, const Bands& bands) {
    const double maxDepth = maxValue(curves.depths, 1);
    PlotPanel panel = {"frames in the queue", 70, 0, maxDepth + 0.3};
    for (double depth = 0; depth <= maxDepth; depth += std::ceil(maxDepth / 5))
        panel.ticks.push_back({depth, fmt::format("{:g}", depth)});
    bands.add(curves.depths, plot::kBlue, plot::kPaleBlue, "depth", panel);
    return panel;
}

PlotPanel frequencyPanel(const Device& device, const RunCurves& curves, size_t cluster,
                         const Bands& bands) {
    const bool hasApp = cluster == device.appCluster;
    const bool hasCompositor = cluster == device.compositorCluster;
    const ClusterSpec& spec = device.clusters[cluster];
    PlotPanel panel = {
            fmt::format("frequency of cluster {} ({}{}{}), MHz", spec.name,
                        hasApp ? "application" : "", hasApp && hasCompositor ? " and " : "",
                        hasCompositor ? "compositor" : ""),
            120, 0, spec.maxMhz() * 1.05};
    const BoostTarget target = device.service.boost;
    if (!curves.boosts.empty() &&
        (target == BoostTarget::All || (target == BoostTarget::Compositor && hasCompositor))) {
        bands.addBoxes(curves.boosts, spec.maxMhz(), "boost", panel);
    }
    bands.add(curves.frequenciesMhz[cluster], plot::kBlue, plot::kPaleBlue, "frequency", panel);
    if (hasApp && !curves.capsMhz.empty()) {
        bands.addValues(curves.capsMhz, plot::kVermillion, "cap", panel);
    }
    return panel;
}

PlotPanel hintPanel(const RunCurves& curves, const CurveMaker& maker, const Bands& bands) {
    PlotPanel panel = {"scale of DOWN while it is in effect, and of UP", 100, kMinScale, kMaxScale,
                       true};
    for (const double scale : {0.1, 0.3, 1.0, 3.0, 10.0})
        panel.ticks.push_back({scale, fmt::format("{:g}", scale)});
    if (!curves.downScales.empty()) {
        bands.add(curves.downScales, plot::kGreen, plot::kPaleGreen, "DOWN", panel);
    }
    PlotPoints ups = curves.ups;
    for (PlotPoint& up : ups)
        up.value = std::min(up.value, kMaxScale);
    panel.curves.push_back(maker.points(ups, plot::marker(9, 0.6, plot::kVermillion), "UP"));
    return panel;
}

}  // namespace

std::string runPanels(const Scenario& scenario, const RunCurves& curves, const std::string& name) {
    const Device& device = scenario.device;
    const CurveMaker maker(curves.beginS, curves.endS);
    const double periodMs = toMs(scenario.workload.periodNs());
    const Bands bands(maker, curves, periodMs / 1e3);
    std::vector<PlotPanel> panels = {frameTimePanel(curves, periodMs, maker),
                                     depthPanel(curves, bands),
                                     frequencyPanel(device, curves, device.appCluster, bands)};
    if (device.compositorCluster != device.appCluster) {
        panels.push_back(frequencyPanel(device, curves, device.compositorCluster, bands));
    }
    panels.push_back({"power of the processor, mW", 80, 0, 1.05 * maxValue(curves.powerMw, 1)});
    bands.addMeans(curves.powerMw, plot::kPurple, "power", panels.back());
    if (!curves.downScales.empty() || !curves.ups.empty()) {
        panels.push_back(hintPanel(curves, maker, bands));
    }
    for (PlotPanel& panel : panels)
        panel.title = name + ": " + panel.title;
    std::ostringstream bytes;
    cereal::BinaryOutputArchive{bytes}(panels);
    return bytes.str();
}

std::string runPlotPage(const std::string& terminal, const std::vector<std::string>& heading,
                        int64_t measuredNs, const std::vector<std::string>& panels) {
    PlotPage page = {heading, toSeconds(kWarmUpNs), toSeconds(kWarmUpNs + measuredNs), {}, {},
                     "run"};
    for (const std::string& bytes : panels) {
        std::istringstream stream(bytes);
        std::vector<PlotPanel> run;
        cereal::BinaryInputArchive{stream}(run);
        std::move(run.begin(), run.end(), std::back_inserter(page.panels));
    }
    return plot::gnuplotScript(page, terminal);
}

}  // namespace brevold::sim
