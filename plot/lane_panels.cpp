#include "plot/lane_panels.h"

#include <fmt/format.h>

#include <iterator>
#include <map>

#include "base/time_units.h"
#include "brevold/frame_rate.h"
#include "brevold/protocol.h"
#include "plot/plot_curves.h"
#include "plot/plot_style.h"
#include "plot/plot_text.h"
#include "replay/recording.h"

namespace brevold::plot {

namespace {

struct Lane {
    std::string label;
    /** Of each replay. */
    std::vector<PlotSpans> spans;
    const char* colour;
};

constexpr int kBarPx = 2;

bool areShares(const PlotSpans& spans) {
    return CurveMaker::isDense(spans.size(), 2 * kBarPx);
}

/** Returns bars that are `height` high. Many bars become the share of the time that they cover. */
std::vector<PlotBox> bars(const PlotSpans& spans, double y, double height,
                          const CurveMaker& maker) {
    std::vector<PlotBox> bars;
    if (areShares(spans)) {
        const BinGrid grid = maker.grid(kBarPx);
        for (const Bin& bin : binSpans(spans, grid)) {
            bars.push_back({bin.fromS, bin.toS, y, y + height * bin.weight / grid.widthS()});
        }
    } else {
        for (const PlotSpan& span : spans)
            bars.push_back({span.fromS, span.toS, y, y + height});
    }
    return bars;
}

/** Rows from top to bottom, each one unit high. */
PlotPanel lanePanel(const std::string& title, int laneHeightPx, const std::vector<Lane>& lanes,
                    const CurveMaker& maker) {
    const auto count = static_cast<int>(lanes.size());
    PlotPanel panel = {title, laneHeightPx * count, 0, static_cast<double>(count)};
    bool hasShares = false;
    for (int i = 0; i < count; ++i) {
        const Lane& lane = lanes[static_cast<size_t>(i)];
        const double y = count - 1 - i;
        panel.ticks.push_back({y + 0.5, lane.label});
        const bool isAlone = lane.spans.size() == 1;
        for (const PlotSpans& spans : lane.spans) {
            const bool isFirst = &spans == lane.spans.data();
            const double bottom = isAlone ? 0.15 : isFirst ? 0.35 : 0.1;
            const double height = isAlone ? 0.7 : isFirst ? 0.55 : 0.2;
            panel.curves.push_back(boxes(bars(spans, y + bottom, height, maker),
                                         framed(isFirst ? lane.colour : kBlack), ""));
            hasShares |= areShares(spans);
        }
    }
    if (hasShares) {
        panel.title += "; height: share of " + durationText(maker.grid(kBarPx).widthS());
    }
    return panel;
}

}  // namespace

PlotSpans unclassifiedSpans(const PlotData& data) {
    PlotSpans spans;
    for (const PlotSpan& mode : data.replays[0].modes) {
        if (mode.value == android::kModeUnclassified) spans.push_back(mode);
    }
    return spans;
}

PlotPanel modePanel(const PlotData& data) {
    std::vector<Lane> lanes;
    for (int mode = std::size(android::kModeLabels) - 1; mode >= 0; --mode) {
        const char* colour = mode == android::kModeUnclassified ? kGrey : kBlue;
        Lane lane = {fmt::format("{}: {}", mode, android::kModeLabels[mode]), {}, colour};
        for (const ReplayCurves& replay : data.replays) {
            PlotSpans& spans = lane.spans.emplace_back();
            std::copy_if(replay.modes.begin(), replay.modes.end(), std::back_inserter(spans),
                         [&](const PlotSpan& span) { return span.value == mode; });
        }
        lanes.push_back(std::move(lane));
    }
    PlotPanel panel = lanePanel("frame-rate mode that the library measures, once a second", 17,
                                lanes, CurveMaker(data.fromS, data.toS));
    panel.curves.push_back(boxes({}, filled(kBlue), "mode"));
    panel.curves.push_back(boxes({}, filled(kShade), "shaded: no DOWN, UP, boost"));
    if (data.replays.size() > 1) {
        panel.curves.push_back(boxes({}, filled(kBlack), "mode with --vs"));
    }
    if (data.replays[0].modes.empty()) panel.note = replay::kNoModesText;
    return panel;
}

PlotPanel boostPanel(const PlotData& data) {
    Lane boosts = {"jank boost", {}, kPurple};
    Lane verdicts = {"boost verdict", {}, kVermillion};
    std::vector<PlotCurve> legend;
    for (const ReplayCurves& replay : data.replays) {
        boosts.spans.push_back(replay.boosts);
        verdicts.spans.push_back(replay.verdicts);
        if (&replay == data.replays.data()) {
            legend.push_back(boxes({}, filled(boosts.colour),
                                   fmt::format("jank boost: {}", replay.boostCount)));
            legend.push_back(boxes({}, filled(verdicts.colour),
                                   fmt::format("boost verdict: {}", replay.verdicts.size())));
        } else {
            legend.push_back(boxes({}, filled(kBlack),
                                   fmt::format("with --vs: {} and {}", replay.boostCount,
                                               replay.verdicts.size())));
        }
    }
    PlotPanel panel = lanePanel("jank boosts until their release, and vsyncs with a boost verdict",
                                30, {boosts, verdicts}, CurveMaker(data.fromS, data.toS));
    panel.curves.insert(panel.curves.end(), legend.begin(), legend.end());
    return panel;
}

PlotPanel markPanel(const PlotData& data, const std::vector<PlotMark>& marks, int64_t startNs) {
    const CurveMaker maker(data.fromS, data.toS);
    std::map<std::string, PlotPoints> times;
    for (const PlotMark& mark : marks) {
        const double timeS = toSeconds(mark.timeNs - startNs);
        if (data.fromS <= timeS && timeS <= data.toS) times[mark.label].push_back({timeS, 1});
    }
    constexpr int kLanePx = 34;
    const auto count = static_cast<int>(times.size());
    PlotPanel panel = {"differences from the replay", kLanePx * count, 0,
                       static_cast<double>(count)};
    panel.ticks = {{0, ""}};
    // The labels may be long, so they are over their marks and not at the axis.
    std::string labels;
    double y = count;
    for (const auto& [label, points] : times) {
        y -= 1;
        PlotSpans ticks;
        for (const Bin& bin : binPoints(points, maker.grid(1)))
            ticks.push_back({bin.fromS, bin.toS, 1});
        panel.curves.push_back(boxes(bars(ticks, y + 0.1, 0.4, maker), framed(kBlack), ""));
        labels +=
                fmt::format("{:.9g} {:g} \"{}: {}\"\n", data.fromS, y + 0.75, label, points.size());
    }
    panel.curves.push_back({labels, "1:2:3", "labels left offset 0.5,0 font ',10'", ""});
    return panel;
}

}  // namespace brevold::plot
