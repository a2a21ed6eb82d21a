#include "trace/compositor.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>

namespace brevold::trace {
namespace {

constexpr int32_t kNobody = -1;
constexpr std::string_view kHardwareVsync = "HW_VSYNC_";

/** The key with the largest value, the first of equals. */
template <typename Map>
int32_t keyOfMost(const Map& counts) {
    const auto most =
            std::max_element(counts.begin(), counts.end(),
                             [](const auto& a, const auto& b) { return a.second < b.second; });
    return most == counts.end() ? kNobody : most->first;
}

int32_t depthOf(int64_t value) {
    return static_cast<int32_t>(std::clamp<int64_t>(value, 0, std::numeric_limits<int32_t>::max()));
}

bool endsInNumber(std::string_view name) {
    const size_t last = name.find_last_not_of("0123456789");
    return last != std::string_view::npos && last + 1 < name.size() && name[last] == '#';
}

std::string layerName(const CounterTrack& track) {
    std::string name = track.name;
    if (track.role == CounterRole::BufferTx) name.erase(0, kBufferTx.size());
    return endsInNumber(name) ? name : name + "#0";
}

}  // namespace

Compositor::Compositor(const TraceMarks& marks)
      : mMarks(marks), mPid(findProcess()), mChanges(marks.tracks().size()) {
    for (const CounterValue& value : marks.counters()) {
        const auto track = static_cast<size_t>(value.track);
        if (marks.tracks()[track].pid != mPid) continue;
        Values& changes = mChanges[track];
        if (changes.empty() || changes.back().value != value.value) changes.push_back(value);
    }
    mTid = findThread();
}

int32_t Compositor::findProcess() const {
    // Marks that only a compositor has, then what others may have too.
    std::map<int32_t, std::array<int64_t, 3>> scores;
    for (const Section& section : mMarks.sections()) {
        ++scores[section.pid][section.kind == kCommitSection ? 1 : 0];
    }
    for (const CounterValue& value : mMarks.counters()) {
        const CounterTrack& track = mMarks.tracks()[static_cast<size_t>(value.track)];
        ++scores[track.pid][track.role == CounterRole::Candidate ? 2 : 0];
    }
    return keyOfMost(scores);
}

int32_t Compositor::findThread() const {
    std::map<int32_t, std::array<int64_t, 2>> scores;
    for (const Section& section : mMarks.sections()) {
        if (section.pid == mPid) ++scores[section.tid][section.kind == kCommitSection ? 1 : 0];
    }
    if (!scores.empty()) return keyOfMost(scores);

    std::map<int32_t, int64_t> falls;
    for (size_t track = 0; track < mChanges.size(); ++track) {
        const CounterRole role = mMarks.tracks()[track].role;
        if (role != CounterRole::Candidate && role != CounterRole::BufferTx) continue;
        int64_t last = 0;
        for (const CounterValue& change : mChanges[track]) {
            if (change.value < last) ++falls[change.tid];
            last = change.value;
        }
    }
    return falls.empty() ? mPid : keyOfMost(falls);
}

bool Compositor::crossesThreads(const Values& changes) const {
    bool risesElsewhere = false;
    bool fallsHere = false;
    int64_t last = 0;
    for (const CounterValue& change : changes) {
        risesElsewhere |= change.value > last && change.tid != mTid;
        fallsHere |= change.value < last && change.tid == mTid;
        last = change.value;
    }
    return risesElsewhere && fallsHere;
}

std::vector<QueuedLayer> Compositor::layers() const {
    const auto& tracks = mMarks.tracks();
    bool hasBufferTx = false;
    for (size_t i = 0; i < tracks.size(); ++i) {
        hasBufferTx |= tracks[i].role == CounterRole::BufferTx && !mChanges[i].empty();
    }
    std::vector<QueuedLayer> layers;
    for (size_t i = 0; i < tracks.size(); ++i) {
        const bool isLayer = hasBufferTx
                                     ? tracks[i].role == CounterRole::BufferTx
                                     : tracks[i].role == CounterRole::Candidate &&
                                               (tracks[i].hasSlots || crossesThreads(mChanges[i]));
        if (!isLayer) continue;
        QueuedLayer layer{layerName(tracks[i]), {}, {}, {}};
        int32_t last = 0;
        for (const CounterValue& change : mChanges[i]) {
            const int32_t depth = depthOf(change.value);
            if (change.value < 0) layer.belowZero.add(change.line);
            // A recording may begin at any depth.
            const bool isFirst = &change == mChanges[i].data();
            if (!isFirst && (depth > last ? depth - last : last - depth) > 1) {
                layer.jumps.add(change.line);
            }
            if (depth == last) continue;
            layer.depths.push_back({change.timeNs, change.line, depth, depth < last});
            last = depth;
        }
        if (!layer.depths.empty()) layers.push_back(std::move(layer));
    }
    return layers;
}

std::vector<const Section*> Compositor::compositions() const {
    std::vector<const Section*> composing;
    std::vector<const Section*> committing;
    for (const Section& section : mMarks.sections()) {
        if (section.pid != mPid || section.tid != mTid) continue;
        (section.kind == kCommitSection ? committing : composing).push_back(&section);
    }
    return composing.empty() ? committing : composing;
}

std::vector<CounterValue> Compositor::changesOf(std::string_view name) const {
    const auto& tracks = mMarks.tracks();
    for (size_t i = 0; i < tracks.size(); ++i) {
        if (tracks[i].pid == mPid && tracks[i].name == name) return mChanges[i];
    }
    return {};
}

std::vector<std::string> Compositor::periodVsyncs() const {
    std::vector<std::string> names = {"VSYNC-app", "VSYNC"};
    const auto& tracks = mMarks.tracks();
    std::vector<size_t> hardware;
    for (size_t i = 0; i < tracks.size(); ++i) {
        const std::string_view name = tracks[i].name;
        if (name.size() > kHardwareVsync.size() &&
            name.substr(0, kHardwareVsync.size()) == kHardwareVsync &&
            name.find_first_not_of("0123456789", kHardwareVsync.size()) == std::string_view::npos &&
            !mChanges[i].empty()) {
            hardware.push_back(i);
        }
    }
    std::stable_sort(hardware.begin(), hardware.end(), [this](size_t a, size_t b) {
        return mChanges[a].size() > mChanges[b].size();
    });
    for (const size_t i : hardware)
        names.push_back(tracks[i].name);
    return names;
}

}  // namespace brevold::trace
