#include "trace/compositor.h"

#include <algorithm>
#include <array>
#include <map>

namespace brevold::trace {
namespace {

constexpr int32_t kNoId = -1;

/** Returns the key with the maximum value, the first of equals. */
template <typename Map>
int32_t keyOfMax(const Map& scores) {
    const auto max =
            std::max_element(scores.begin(), scores.end(),
                             [](const auto& a, const auto& b) { return a.second < b.second; });
    return max == scores.end() ? kNoId : max->first;
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
    // Compared in this order: marks that only a compositor has, commits, other counters.
    std::map<int32_t, std::array<int64_t, 3>> scores;
    for (const Section& section : mMarks.sections()) {
        ++scores[section.pid][section.isCommit() ? 1 : 0];
    }
    for (const CounterValue& value : mMarks.counters()) {
        const CounterTrack& track = mMarks.tracks()[static_cast<size_t>(value.track)];
        ++scores[track.pid][track.role == CounterRole::Candidate ? 2 : 0];
    }
    return keyOfMax(scores);
}

int32_t Compositor::findThread() const {
    std::map<int32_t, std::array<int64_t, 2>> scores;
    for (const Section& section : mMarks.sections()) {
        if (section.pid == mPid) ++scores[section.begin.tid][section.isCommit() ? 1 : 0];
    }
    if (!scores.empty()) return keyOfMax(scores);

    std::map<int32_t, int64_t> falls;
    for (size_t track = 0; track < mChanges.size(); ++track) {
        const CounterRole role = tracks()[track].role;
        if (role != CounterRole::Candidate && role != CounterRole::BufferTx) continue;
        int64_t last = 0;
        for (const CounterValue& change : mChanges[track]) {
            if (change.value < last) ++falls[change.at.tid];
            last = change.value;
        }
    }
    return falls.empty() ? mPid : keyOfMax(falls);
}

std::vector<const Section*> Compositor::compositions() const {
    std::vector<const Section*> composing;
    std::vector<const Section*> committing;
    for (const Section& section : mMarks.sections()) {
        if (section.pid != mPid || section.begin.tid != mTid) continue;
        (section.isCommit() ? committing : composing).push_back(&section);
    }
    return composing.empty() ? committing : composing;
}

const Compositor::Values& Compositor::changesOf(std::string_view name) const {
    static const Values kNone;
    const auto found = std::find_if(
            tracks().begin(), tracks().end(),
            [&](const CounterTrack& track) { return track.pid == mPid && track.name == name; });
    return found == tracks().end() ? kNone
                                   : mChanges[static_cast<size_t>(found - tracks().begin())];
}

}  // namespace brevold::trace
