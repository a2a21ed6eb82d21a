#include "trace/period_source.h"

#include <algorithm>
#include <limits>

#include "trace/vsync_counters.h"

namespace brevold::trace {
namespace {

constexpr int64_t kForeverNs = std::numeric_limits<int64_t>::max();

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
std::vector<Interval> predictedTicks(const ChangeList& values, int64_t untilNs) {
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
        if (value.timeNs > untilNs) return;
        addTicksUntil(value.timeNs);
        last.reset();
        if (isPeriod(value.value)) last = PeriodChange{value.timeNs, value.value};
    });
    addTicksUntil(untilNs);
    return ticks;
}

std::vector<Interval> toggleIntervals(const ChangeList& toggles, int64_t untilNs) {
    std::vector<Interval> intervals;
    intervals.reserve(toggles.size());
    std::optional<int64_t> lastNs;
    toggles.forEach([&](const CounterChange& toggle) {
        if (toggle.timeNs > untilNs) return;
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

bool isStated(PeriodSource source) {
    return source == PeriodSource::SetPeriod || source == PeriodSource::DisplayMode;
}

/** Returns the periods that the ticks up to a time show. */
std::vector<PeriodChange> tickedPeriods(const PeriodCounter& counter, int64_t untilNs) {
    const ChangeList& changes = counter.track->changes;
    return followPeriod(counter.source == PeriodSource::PredictedPeriod
                                ? predictedTicks(changes, untilNs)
                                : toggleIntervals(changes, untilNs),
                        counter.intervals);
}

std::vector<PeriodChange> periodsOf(const PeriodCounter& counter) {
    return isStated(counter.source) ? statedPeriods(counter.track->changes)
                                    : tickedPeriods(counter, kForeverNs);
}

/** Returns the period before the first stated one, or nullopt if the ticks do not show it. */
std::optional<int64_t> periodBefore(const PeriodChange& first, const PeriodCounter& stated,
                                    std::vector<PeriodCounter> counters,
                                    const Compositor& compositor) {
    // The compositor's own vsyncs are shifted at times, which does not matter here.
    for (const CounterTrack& track : compositor.tracks()) {
        if (track.name != kVsyncSfCounter) continue;
        counters.push_back({PeriodSource::VsyncToggles, IntervalKind::RequestedTick, &track});
    }
    const std::string_view display = displayIdOf(stated.track->name);
    for (const PeriodCounter& counter : counters) {
        const std::string_view ticking = displayIdOf(counter.track->name);
        const bool isOtherDisplay = !display.empty() && !ticking.empty() && ticking != display;
        if (isStated(counter.source) || isOtherDisplay) continue;
        const std::vector<PeriodChange> periods = tickedPeriods(counter, first.timeNs);
        if (periods.empty()) continue;
        const int64_t periodNs = periods.back().periodNs;
        // Vsyncs on request may skip ticks of the period that is stated later.
        const bool isClear = counter.intervals == IntervalKind::DisplayTick ||
                             periodNs == first.periodNs || !isTicksOf(periodNs, first.periodNs);
        if (isClear) return periodNs;
    }
    return {};
}

}  // namespace

RefreshPeriods findRefreshPeriods(const Compositor& compositor,
                                  const std::deque<QueuedLayer>& layers,
                                  std::optional<double> rateHz) {
    if (rateHz) return {PeriodSource::Option, "", {{0, periodOfRate(*rateHz)}}};

    const std::vector<PeriodCounter> counters = findPeriodCounters(compositor);
    for (const PeriodCounter& counter : counters) {
        std::vector<PeriodChange> changes = periodsOf(counter);
        if (changes.empty()) continue;
        const bool isNamed = counter.source != PeriodSource::SetPeriod;
        std::optional<int64_t> unknownUntilNs;
        if (isStated(counter.source)) {
            const PeriodChange first = changes.front();
            const std::optional<int64_t> beforeNs =
                    periodBefore(first, counter, counters, compositor);
            if (!beforeNs) unknownUntilNs = first.timeNs;
            if (beforeNs.value_or(first.periodNs) != first.periodNs) {
                changes.insert(changes.begin(), {first.timeNs, *beforeNs});
            }
        }
        return {counter.source, isNamed ? counter.track->name : "", std::move(changes),
                unknownUntilNs};
    }
    std::vector<PeriodChange> changes = followPeriod(frameIntervals(layers), IntervalKind::Frame);
    if (!changes.empty()) return {PeriodSource::FrameIntervals, "", std::move(changes)};
    return {PeriodSource::Default, "", {{0, kPeriod60Ns}}};
}

}  // namespace brevold::trace
