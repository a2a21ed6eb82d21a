#include "plot/scale_panel.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "plot/plot_curves.h"
#include "plot/plot_style.h"
#include "plot/plot_text.h"

namespace brevold::plot {

namespace {

/** The scales of one direction. */
struct ScaleCurve {
    PlotSpans scales;
    /** The scales furthest from 1 in each bin; empty unless `scales` are medians of bins. */
    PlotSpans extremes;
};

constexpr int kScaleBinPx = 2;

ScaleCurve scaleCurve(const PlotSpans& spans, const CurveMaker& maker) {
    if (!CurveMaker::isDense(spans.size(), kScaleBinPx)) return {spans, {}};
    ScaleCurve curve;
    for (const Bin& bin : binSpans(spans, maker.grid(kScaleBinPx))) {
        curve.scales.push_back({bin.fromS, bin.toS, bin.median});
        const double extreme = bin.max > 1 ? bin.max : bin.min;
        curve.extremes.push_back({bin.fromS, bin.toS, extreme});
    }
    return curve;
}

/** Returns bars between 1 and each scale. */
std::vector<PlotBox> barsFromOne(const PlotSpans& spans, double minScale) {
    std::vector<PlotBox> bars;
    for (const PlotSpan& span : spans) {
        const double scale = std::max(span.value, minScale);
        bars.push_back({span.fromS, span.toS, std::min(scale, 1.0), std::max(scale, 1.0)});
    }
    return bars;
}

PlotSpans limitedBelow(PlotSpans spans, double minValue) {
    for (PlotSpan& span : spans)
        span.value = std::max(span.value, minValue);
    return spans;
}

// Scales below it, among them 0, are marked at the edge of the axis.
constexpr double kMinScale = 1.0 / 16;

/** Returns the power of two so that the axis from its inverse to it has all scales. */
double maxAxisScale(const PlotData& data) {
    double limit = 2;
    for (const ReplayCurves& replay : data.replays) {
        for (const PlotSpan& up : replay.ups)
            limit = std::max(limit, up.value);
        for (const PlotSpan& down : replay.downs)
            limit = std::max(limit, 1 / std::max(down.value, kMinScale));
    }
    return std::exp2(std::ceil(std::log2(limit)));
}

void addFirst(const PlotSpans& spans, const std::string& title, const char* colour,
              const char* paleColour, double minScale, const CurveMaker& maker, PlotPanel* panel) {
    const ScaleCurve curve = scaleCurve(spans, maker);
    const bool isBinned = !curve.extremes.empty();
    const std::string width = durationText(maker.grid(kScaleBinPx).widthS());
    if (isBinned) {
        panel->curves.push_back(boxes(barsFromOne(curve.extremes, minScale), filled(paleColour),
                                      "extreme of " + width));
    }
    panel->curves.push_back(boxes(barsFromOne(curve.scales, minScale), framed(colour),
                                  isBinned ? title + ", median" : title));
}

void addSecond(const PlotSpans& spans, const std::string& title, double minScale,
               const CurveMaker& maker, PlotPanel* panel) {
    const PlotSpans scales = limitedBelow(scaleCurve(spans, maker).scales, minScale);
    panel->curves.push_back(maker.steps(scales, line(1, kBlack), title));
}

void addSmallScales(const PlotSpans& downs, const char* suffix, int markType, double minScale,
                    const CurveMaker& maker, PlotPanel* panel) {
    PlotPoints small;
    for (const PlotSpan& down : downs) {
        if (down.value < kMinScale) small.push_back({down.fromS, down.value});
    }
    if (small.empty()) return;
    panel->curves.push_back(
            maker.edgeMarks(small, minScale * 1.15, marker(markType, 0.9, kBlack),
                            fmt::format("DOWN{} below {:g}: {}", suffix, kMinScale, small.size())));
}

}  // namespace

PlotPanel scalePanel(const PlotData& data) {
    const CurveMaker maker(data.fromS, data.toS);
    const double maxScale = maxAxisScale(data);
    PlotPanel panel = {
            "scale of the requests (logarithmic): UP, above 1, asks for more speed; DOWN, below 1, "
            "for less",
            220, 1 / maxScale, maxScale, true};
    for (double scale = panel.minY; scale <= maxScale; scale *= 2)
        panel.ticks.push_back({scale, fmt::format("{:g}", scale)});
    panel.note = "no DOWN or UP";
    for (const ReplayCurves& replay : data.replays) {
        if (!replay.ups.empty() || !replay.downs.empty()) panel.note.clear();
        const bool isFirst = &replay == data.replays.data();
        const char* suffix = isFirst ? "" : " with --vs";
        const std::string up = fmt::format("UP{}: {}", suffix, replay.upCount);
        const std::string down = fmt::format("DOWN{}: {}", suffix, replay.downCount);
        if (isFirst) {
            addFirst(replay.ups, up, kVermillion, kPaleVermillion, panel.minY, maker, &panel);
            addFirst(replay.downs, down, kGreen, kPaleGreen, panel.minY, maker, &panel);
        } else {
            addSecond(replay.ups, up, panel.minY, maker, &panel);
            addSecond(replay.downs, down, panel.minY, maker, &panel);
        }
        addSmallScales(replay.downs, suffix, isFirst ? 11 : 10, panel.minY, maker, &panel);
    }
    panel.curves.push_back(maker.steps({{data.fromS, data.toS, 1}}, line(1, kGrey), ""));
    return panel;
}

}  // namespace brevold::plot
