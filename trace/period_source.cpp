#include "trace/period_source.h"

#include <algorithm>

#include "trace/vsync_counters.h"

namespace brevold::trace {
namespace {

std::vector<PeriodChange> setPeriods(const Compositor& compositor) {
    std::vector<PeriodChange> changes;
    for (const CounterValue& set : compositor.changesOf(kSetPeriodCounter)) {
        if (set.value < kMinPeriodNs || set.value > kMaxPeriodNs) continue;
        const int64_t periodNs = snapPeriod(set.value);
        if (!changes.empty() && changes.back().periodNs == periodNs) continue;
        changes.push_back({set.at.timeNs, periodNs});
    }
    return changes;
}

std::vector<Interval> toggleIntervals(const Compositor::Values& toggles) {
    std::vector<Interval> intervals;
    for (size_t i = 1; i < toggles.size(); ++i) {
        const int64_t endNs = toggles[i].at.timeNs;
        intervals.push_back({endNs, endNs - toggles[i - 1].at.timeNs});
    }
    return intervals;
}

/** The intervals between the frames of each layer, in the order of their ends. */
std::vector<Interval> frameIntervals(const std::vector<QueuedLayer>& layers) {
    std::vector<Interval> intervals;
    for (const QueuedLayer& layer : layers) {
        std::optional<int64_t> lastNs;
        for (const DepthChange& change : layer.depths) {
            if (!change.isFrame) continue;
            const int64_t timeNs = change.at.timeNs;
            if (lastNs) intervals.push_back({timeNs, timeNs - *lastNs});
            lastNs = timeNs;
        }
    }
    std::stable_sort(intervals.begin(), intervals.end(),
                     [](const Interval& a, const Interval& b) { return a.endNs < b.endNs; });
    return intervals;
}

}  // namespace

RefreshPeriods findRefreshPeriods(const Compositor& compositor,
                                  const std::vector<QueuedLayer>& layers,
                                  std::optional<double> rateHz) {
    if (rateHz) return {PeriodSource::Option, "", {{0, periodOfRate(*rateHz)}}};

    std::vector<PeriodChange> changes = setPeriods(compositor);
    if (!changes.empty()) return {PeriodSource::SetPeriod, "", std::move(changes)};

    for (const std::string& counter : periodCounters(compositor)) {
        changes = followPeriod(toggleIntervals(compositor.changesOf(counter)), UnknownRate::Keep);
        if (!changes.empty()) return {PeriodSource::VsyncToggles, counter, std::move(changes)};
    }

    changes = followPeriod(frameIntervals(layers), UnknownRate::Ignore);
    if (!changes.empty()) return {PeriodSource::FrameIntervals, "", std::move(changes)};
    return {PeriodSource::Default, "", {{0, kPeriod60Ns}}};
}

}  // namespace brevold::trace
