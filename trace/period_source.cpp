#include "trace/period_source.h"

#include <algorithm>
#include <limits>

#include "trace/vsync_counters.h"

namespace brevold::trace {
namespace {

bool isPeriod(int32_t value) {
    return value >= kMinPeriodNs && value <= kMaxPeriodNs;
}

std::vector<PeriodChange> statedPeriods(const ChangeList& values) {
    std::vector<PeriodChange> changes;
    values.forEach([&](const CounterChange& value) {
        if (!isPeriod(value.value)) return;
        const int64_t periodNs = snapPeriod(value.value);
        if (!changes.empty() && changes.back().periodNs == periodNs) return;
        changes.push_back({value.timeNs, periodNs});
    });
    return changes;
}

/** The ticks that a predicted period leads to, as far as they matter to followPeriod(). */
std::vector<Interval> predictedTicks(const ChangeList& values) {
    std::vector<Interval> ticks;
    std::optional<PeriodChange> last;
    const auto addTicksUntil = [&](int64_t timeNs) {
        if (!last) return;
        const auto count = std::clamp<int64_t>((timeNs - last->timeNs) / last->periodNs, 1,
                                               kDisplayTicksToFollow);
        for (int64_t i = 1; i <= count; ++i)
            ticks.push_back({last->timeNs + i * last->periodNs, last->periodNs});
    };
    values.forEach([&](const CounterChange& value) {
        addTicksUntil(value.timeNs);
        last.reset();
        if (isPeriod(value.value)) last = PeriodChange{value.timeNs, value.value};
    });
    addTicksUntil(std::numeric_limits<int64_t>::max());
    return ticks;
}

std::vector<Interval> toggleIntervals(const ChangeList& toggles) {
    std::vector<Interval> intervals;
    intervals.reserve(toggles.size());
    std::optional<int64_t> lastNs;
    toggles.forEach([&](const CounterChange& toggle) {
        if (lastNs) intervals.push_back({toggle.timeNs, toggle.timeNs - *lastNs});
        lastNs = toggle.timeNs;
    });
    return intervals;
}

/** The intervals between the frames of each layer, in the order of their ends. */
std::vector<Interval> frameIntervals(const std::deque<QueuedLayer>& layers) {
    size_t frames = 0;
    for (const QueuedLayer& layer : layers)
        frames += static_cast<size_t>(layer.layer.frames);
    std::vector<Interval> intervals;
    intervals.reserve(frames);
    for (const QueuedLayer& layer : layers) {
        std::optional<int64_t> lastNs;
        layer.forEachDepth([&](const DepthChange& change) {
            if (change.kind != DepthChange::Kind::Frame) return;
            const int64_t timeNs = change.at.timeNs;
            if (lastNs) intervals.push_back({timeNs, timeNs - *lastNs});
            lastNs = timeNs;
        });
    }
    const auto endsEarlier = [](const Interval& a, const Interval& b) { return a.endNs < b.endNs; };
    // A sort takes memory, which one layer does not need.
    if (!std::is_sorted(intervals.begin(), intervals.end(), endsEarlier)) {
        std::stable_sort(intervals.begin(), intervals.end(), endsEarlier);
    }
    return intervals;
}

std::vector<PeriodChange> periodsOf(const PeriodCounter& counter) {
    const ChangeList& changes = counter.track->changes;
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
                                  const std::deque<QueuedLayer>& layers,
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
