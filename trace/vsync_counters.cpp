#include "trace/vsync_counters.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace brevold::trace {
namespace {

constexpr std::pair<const char*, VsyncSource> kVsyncCounters[] = {
        {kVsyncSfCounter, VsyncSource::VsyncSf}, {"VSYNC", VsyncSource::Vsync}};

constexpr std::string_view kHardwareVsync = "HW_VSYNC_";

/** "HW_VSYNC_<display id>", but not the on/off counter "HW_VSYNC_ON_<display id>". */
bool isHardwareVsync(std::string_view name) {
    const std::string_view id = displayIdOf(name);
    return !id.empty() && name.substr(0, name.size() - id.size()) == kHardwareVsync;
}

struct RankedCounter {
    enum Rank : uint8_t { SetPeriod, DisplayMode, Predicted, Hardware, Vsync, VsyncApp, None };

    Rank rank;
    size_t displayVsyncs;
    size_t changes;
    PeriodCounter counter;
};

RankedCounter::Rank rankOf(const CounterTrack& track) {
    switch (track.role) {
        case CounterRole::SetPeriod:
            return RankedCounter::SetPeriod;
        case CounterRole::DisplayMode:
            return RankedCounter::DisplayMode;
        case CounterRole::PredictedPeriod:
            return RankedCounter::Predicted;
        case CounterRole::Vsync:
            if (isHardwareVsync(track.name)) return RankedCounter::Hardware;
            if (track.name == "VSYNC") return RankedCounter::Vsync;
            if (track.name == "VSYNC-app") return RankedCounter::VsyncApp;
            return RankedCounter::None;
        case CounterRole::Candidate:
        case CounterRole::BufferTx:
        case CounterRole::Unrelated:
            return RankedCounter::None;
    }
    return RankedCounter::None;
}

PeriodSource sourceOf(RankedCounter::Rank rank) {
    switch (rank) {
        case RankedCounter::SetPeriod:
            return PeriodSource::SetPeriod;
        case RankedCounter::DisplayMode:
            return PeriodSource::DisplayMode;
        case RankedCounter::Predicted:
            return PeriodSource::PredictedPeriod;
        case RankedCounter::Hardware:
        case RankedCounter::Vsync:
        case RankedCounter::VsyncApp:
        case RankedCounter::None:
            break;
    }
    return PeriodSource::VsyncToggles;
}

}  // namespace

Vsyncs takeVsyncs(Compositor& compositor) {
    for (const auto& [name, source] : kVsyncCounters) {
        for (CounterTrack& track : compositor.tracks()) {
            if (track.name != name || track.changes.isEmpty()) continue;
            Vsyncs vsyncs = {source, {}};
            while (!track.changes.isEmpty())
                vsyncs.toggles.push_back(track.changes.takeFirst().at());
            return vsyncs;
        }
    }
    return {};
}

std::vector<PeriodCounter> findPeriodCounters(const Compositor& compositor) {
    std::map<std::string_view, size_t> displayVsyncs;
    for (const CounterTrack& track : compositor.tracks()) {
        if (isHardwareVsync(track.name)) {
            displayVsyncs[displayIdOf(track.name)] = track.changes.size();
        }
    }
    std::vector<RankedCounter> found;
    for (const CounterTrack& track : compositor.tracks()) {
        const size_t changes = track.changes.size();
        const RankedCounter::Rank rank = rankOf(track);
        if (changes == 0 || rank == RankedCounter::None) continue;
        const auto vsyncs = displayVsyncs.find(displayIdOf(track.name));
        const bool isRequested = rank == RankedCounter::Vsync || rank == RankedCounter::VsyncApp;
        const IntervalKind intervals =
                isRequested ? IntervalKind::RequestedTick : IntervalKind::DisplayTick;
        found.push_back({rank,
                         vsyncs == displayVsyncs.end() ? 0 : vsyncs->second,
                         changes,
                         {sourceOf(rank), intervals, &track}});
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const RankedCounter& a, const RankedCounter& b) {
                         return std::tie(a.rank, b.displayVsyncs, b.changes) <
                                std::tie(b.rank, a.displayVsyncs, a.changes);
                     });
    std::vector<PeriodCounter> counters;
    for (const RankedCounter& ranked : found)
        counters.push_back(ranked.counter);
    return counters;
}

}  // namespace brevold::trace
