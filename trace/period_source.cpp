#include "trace/period_source.h"

#include <algorithm>
#include <limits>

#include "trace/vsync_counters.h"

namespace brevold::trace {
namespace {

using Changes = Compositor::Changes;

bool isPeriod(int32_t value) {
    return value >= kMinPeriodNs && value <= kMaxPeriodNs;
}

std::vector<PeriodChange> statedPeriods(const Changes& values) {
    std::vector<PeriodChange> changes;
    for (const CounterChange& value : values) {
        if (!isPeriod(value.value)) continue;
        const int64_t periodNs = snapPeriod(value.value);
        if (!changes.empty() && changes.back().periodNs == periodNs) continue;
        changes.push_back({value.timeNs, periodNs});
    }
    return changes;
}

/** The ticks that a predicted period leads to, as far as they matter to followPeriod(). */
std::vector<Interval> predictedTicks(const Changes& values) {
    std::vector<Interval> ticks;
    for (const CounterChange& value : values) {
        if (!isPeriod(value.value)) continue;
        const bool isLast = &value == &values.back();
        const int64_t heldNs =
                isLast ? std::numeric_limits<int64_t>::max() : (&value)[1].timeNs - value.timeNs;
        const auto count = std::clamp<int64_t>(heldNs / value.value, 1, kDisplayTicksToFollow);
        for (int64_t i = 1; i <= count; ++i)
            ticks.push_back({value.timeNs + i * value.value, value.value});
    }
    return ticks;
}

std::vector<Interval> toggleIntervals(const Changes& toggles) {
    std::vector<Interval> intervals;
    for (size_t i = 1; i < toggles.size(); ++i) {
        const int64_t endNs = toggles[i].timeNs;
        intervals.push_back({endNs, endNs - toggles[i - 1].timeNs});
    }
    return intervals;
}

/** The intervals between the frames of each layer, in the order of their ends. */
std::vector<Interval> frameIntervals(const std::vector<QueuedLayer>& layers) {
    std::vector<Interval> intervals;
    for (const QueuedLayer& layer : layers) {
        std::optional<int64_t> lastNs;
        layer.forEachDepth([&](const DepthChange& change) {
            if (change.kind != DepthChange::Kind::Frame) return;
            const int64_t timeNs = change.at.timeNs;
            if (lastNs) intervals.push_back({timeNs, timeNs - *lastNs});
            lastNs = timeNs;
        });
    }
    std::stable_sort(intervals.begin(), intervals.end(),
                     [](const Interval& a, const Interval& b) { return a.endNs < b.endNs; });
    return intervals;
}

std::vector<PeriodChange> periodsOf(const PeriodCounter& counter) {
    const Changes& changes = counter.track->changes;
    switch (counter.source) {
        case PeriodSource::SetPeriod:
        case PeriodSource::DisplayMode:
            return statedPeriods(changes);
        case PeriodSource::PredictedPeriod:
            return followPeriod(predictedTicks(changes), IntervalKind::DisplayTick);
        default:
            return followPeriod(toggleIntervals(changes), counter.intervals);
    }
}

}  // namespace

RefreshPeriods findRefreshPeriods(const Compositor& compositor,
                                  const std::vector<QueuedLayer>& layers,
                                  std::optional<double> rateHz) {
    if (rateHz) return {PeriodSource::Option, "", {{0, periodOfRate(*rateHz)}}};

    for (const PeriodCounter& counter : findPeriodCounters(compositor)) {
        std::vector<PeriodChange> changes = periodsOf(counter);
        if (changes.empty()) continue;
        const bool isNamed = counter.source != PeriodSource::SetPeriod;
        return {counter.source, isNamed ? counter.track->name : "", std::move(changes)};
    }
    std::vector<PeriodChange> changes = followPeriod(frameIntervals(layers), IntervalKind::Frame);
    if (!changes.empty()) return {PeriodSource::FrameIntervals, "", std::move(changes)};
    return {PeriodSource::Default, "", {{0, kPeriod60Ns}}};
}

}  // namespace brevold::trace
