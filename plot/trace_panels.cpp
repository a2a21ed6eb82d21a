#include "plot/trace_panels.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "brevold/frame_rate.h"
#include "plot/plot_curves.h"
#include "plot/plot_style.h"
#include "plot/plot_text.h"

namespace brevold::plot {

namespace {

constexpr double kIdleGapMs = android::kIdleGapNs / 1e6;

template <typename Values>
double maxValue(const Values& values, double lowerBound) {
    for (const auto& value : values)
        lowerBound = std::max(lowerBound, value.value);
    return lowerBound;
}

/** Returns two periods where that is on the axis. */
PlotSpans twoPeriods(const PlotSpans& periodsMs, double limitMs) {
    PlotSpans spans;
    for (const PlotSpan& period : periodsMs) {
        if (2 * period.value <= limitMs) {
            spans.push_back({period.fromS, period.toS, 2 * period.value});
        }
    }
    return spans;
}

/** Returns the longest interval on the axis: 98 % of those of an active layer are shorter. */
double intervalLimitMs(const PlotData& data) {
    constexpr double kShare = 0.98;
    constexpr double kMargin = 1.15;
    double limitMs = 0;
    std::vector<double> intervals;
    for (const PlotPoint& point : data.frameIntervalsMs) {
        if (point.value < kIdleGapMs) intervals.push_back(point.value);
    }
    if (!intervals.empty()) {
        const auto index = static_cast<double>(intervals.size() - 1) * kShare;
        const auto high = intervals.begin() + static_cast<ptrdiff_t>(index);
        std::nth_element(intervals.begin(), high, intervals.end());
        limitMs = *high * kMargin;
    }
    double minPeriodMs = maxValue(data.periodsMs, 0);
    for (const PlotSpan& period : data.periodsMs)
        minPeriodMs = std::min(minPeriodMs, period.value);
    return std::max({limitMs, 2.2 * minPeriodMs, 1.1 * maxValue(data.periodsMs, 0)});
}

/** Writes the lengths of the longest intervals under their marks, as far as there is space. */
PlotCurve outlierLabels(PlotPoints outliers, double y, double minDistanceS) {
    constexpr size_t kMaxLabels = 20;
    std::sort(outliers.begin(), outliers.end(),
              [](const PlotPoint& a, const PlotPoint& b) { return a.value > b.value; });
    PlotPoints labelled;
    for (const PlotPoint& point : outliers) {
        const bool isFree =
                std::none_of(labelled.begin(), labelled.end(), [&](const PlotPoint& other) {
                    return std::abs(other.timeS - point.timeS) < minDistanceS;
                });
        if (isFree && labelled.size() < kMaxLabels) labelled.push_back(point);
    }
    std::string rows;
    for (const PlotPoint& point : labelled) {
        const std::string label = point.value < 1e3 ? fmt::format("{:.0f}", point.value)
                                                    : durationText(point.value / 1e3);
        rows += fmt::format("{:.9g} {:.6g} \"{}\"\n", point.timeS, y, label);
    }
    return {rows, "1:2:3", "labels center offset 0,-0.8 font ',9'", ""};
}

void addIntervalBins(const PlotPoints& intervals, double limitMs, const CurveMaker& maker,
                     PlotPanel* panel) {
    const BinGrid grid = maker.grid(2);
    std::vector<PlotBox> ranges;
    std::vector<PlotBox> bulks;
    PlotSpans medians;
    for (const Bin& bin : binPoints(intervals, grid)) {
        const auto limited = [&](double value) { return std::min(value, limitMs); };
        ranges.push_back({bin.fromS, bin.toS, limited(bin.min), limited(bin.max)});
        bulks.push_back({bin.fromS, bin.toS, limited(bin.percentile5), limited(bin.percentile95)});
        medians.push_back({bin.fromS, bin.toS, limited(bin.median)});
    }
    const std::string width = durationText(grid.widthS());
    panel->curves.push_back(boxes(ranges, filled(kPaleBlue), "all intervals of " + width));
    panel->curves.push_back(boxes(bulks, filled(kMidBlue), "5 % to 95 % of them"));
    panel->curves.push_back(maker.steps(medians, line(1.5, kBlue), "median"));
}

void addOutliers(const PlotPoints& outliers, double limitMs, const CurveMaker& maker,
                 PlotPanel* panel) {
    if (outliers.empty()) return;
    const double markY = limitMs + (panel->maxY - limitMs) * 0.75;
    const std::string title = fmt::format("{} above {:.0f} ms, max {}", outliers.size(), limitMs,
                                          durationText(maxValue(outliers, 0) / 1e3));
    panel->curves.push_back(maker.edgeMarks(outliers, markY, marker(9, 0.8, kVermillion), title));
    panel->curves.push_back(outlierLabels(outliers, markY, maker.grid(40).widthS()));
}

}  // namespace

PlotPanel intervalPanel(const PlotData& data) {
    const CurveMaker maker(data.fromS, data.toS);
    const double limitMs = intervalLimitMs(data);
    PlotPanel panel = {"time between frames that the application queues, ms", 220, 0,
                       limitMs * 1.16};
    PlotPoints outliers;
    PlotPoints others;
    for (const PlotPoint& point : data.frameIntervalsMs)
        (point.value > limitMs ? outliers : others).push_back(point);
    if (CurveMaker::isDense(data.frameIntervalsMs.size(), 1)) {
        addIntervalBins(data.frameIntervalsMs, limitMs, maker, &panel);
    } else {
        panel.curves.push_back(maker.points(others, marker(7, 0.35, kBlue), "frame interval"));
    }
    panel.curves.push_back(maker.steps(data.periodsMs, line(1.5, kOrange), "1 refresh period"));
    panel.curves.push_back(
            maker.steps(twoPeriods(data.periodsMs, limitMs), dashed(1.5, kOrange), "2 periods"));
    addOutliers(outliers, limitMs, maker, &panel);
    if (data.frameIntervalsMs.empty()) panel.note = "fewer than two frames";
    return panel;
}

PlotPanel missedRefreshPanel(const PlotData& data) {
    const CurveMaker maker(data.fromS, data.toS);
    double total = 0;
    for (const PlotPoint& point : data.missedRefreshes)
        total += point.value;
    PlotPanel panel = {"missed refreshes, against the pace of the 15 frames before", 50, 0,
                       1.15 * maxValue(data.missedRefreshes, 1)};
    const std::string title = fmt::format("missed: {:.0f}", total);
    if (CurveMaker::isDense(data.missedRefreshes.size(), 4)) {
        const BinGrid grid = maker.grid(4);
        std::vector<PlotBox> sums;
        for (const Bin& bin : binPoints(data.missedRefreshes, grid)) {
            sums.push_back({bin.fromS, bin.toS, 0, bin.mean * bin.weight});
            panel.maxY = std::max(panel.maxY, 1.15 * sums.back().high);
        }
        panel.curves = {boxes(sums, filled(kVermillion),
                              fmt::format("{}, sum of {}", title, durationText(grid.widthS())))};
    } else {
        std::vector<PlotBox> bars;
        for (const PlotPoint& point : data.missedRefreshes)
            bars.push_back({point.timeS, point.timeS, 0, point.value});
        panel.curves = {boxes(bars, framed(kVermillion, 2), title)};
    }
    const double step = std::max(1.0, std::ceil(panel.maxY / 3));
    for (double value = 0; value <= panel.maxY; value += step)
        panel.ticks.push_back({value, fmt::format("{:g}", value)});
    return panel;
}

PlotPanel depthPanel(const PlotData& data) {
    const CurveMaker maker(data.fromS, data.toS);
    const double maxDepth = maxValue(data.depths, 1);
    PlotPanel panel = {"frames in the queue", 100, 0, maxDepth + 0.3};
    const double step = std::ceil(maxDepth / 5);
    for (double depth = 0; depth <= maxDepth; depth += step)
        panel.ticks.push_back({depth, fmt::format("{:g}", depth)});
    if (!CurveMaker::isDense(data.depths.size(), 4)) {
        panel.curves = {maker.steps(data.depths, line(1, kBlue), "queue depth")};
        return panel;
    }
    const BinGrid grid = maker.grid(8);
    std::vector<PlotBox> ranges;
    PlotSpans means;
    for (const Bin& bin : binSpans(data.depths, grid)) {
        ranges.push_back({bin.fromS, bin.toS, bin.min, bin.max});
        means.push_back({bin.fromS, bin.toS, bin.mean});
    }
    panel.curves = {boxes(ranges, filled(kPaleBlue), "min to max"),
                    maker.steps(means, line(1.5, kBlue), "mean of " + durationText(grid.widthS()))};
    return panel;
}

PlotPanel ratePanel(const PlotData& data) {
    const CurveMaker maker(data.fromS, data.toS);
    PlotSpans ratesHz = data.periodsMs;
    for (PlotSpan& span : ratesHz)
        span.value = 1e3 / span.value;
    double maxHz = maxValue(ratesHz, 0);
    for (const ReplayCurves& replay : data.replays)
        maxHz = maxValue(replay.rateHintsHz, maxHz);
    PlotPanel panel = {"refresh rate of the display, Hz", 80, 0, 1.2 * maxHz};
    constexpr int kTickHz = 30;
    const int stepHz = kTickHz * static_cast<int>(std::ceil(maxHz / kTickHz / 5));
    for (int rateHz = 0; rateHz <= panel.maxY; rateHz += stepHz)
        panel.ticks.push_back({static_cast<double>(rateHz), fmt::format("{}", rateHz)});
    panel.curves = {maker.steps(ratesHz, line(1.5, kBlack), "display")};
    for (const ReplayCurves& replay : data.replays) {
        const bool isFirst = &replay == data.replays.data();
        panel.curves.push_back(maker.points(
                replay.rateHintsHz, isFirst ? marker(7, 0.7, kOrange) : marker(6, 1.1, kBlack),
                fmt::format("refresh-rate hint{}: {}", isFirst ? "" : ", --vs",
                            replay.rateHintsHz.size())));
    }
    return panel;
}

}  // namespace brevold::plot
