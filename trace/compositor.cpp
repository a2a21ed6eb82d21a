#include "trace/compositor.h"

#include <algorithm>
#include <array>
#include <map>

#include "base/error.h"

namespace brevold::trace {
namespace {

/** The marks that may identify a compositor, in the order in which processes are compared. */
enum Evidence : uint8_t { Sure, Commits, Slots, OtherCounters, kEvidences };
using Score = std::array<int64_t, kEvidences>;
using Scores = std::map<int32_t, Score>;

Evidence evidenceOf(const CounterTrack& track) {
    if (track.role != CounterRole::Candidate) return Sure;
    return track.hasSlots ? Slots : OtherCounters;
}

template <typename Map>
bool hasLowerScore(const typename Map::value_type& a, const typename Map::value_type& b) {
    return a.second < b.second;
}

/** Returns the entry with the maximum score, the first of equals. The map must not be empty. */
template <typename Map>
auto maxOf(const Map& scores) {
    return std::max_element(scores.begin(), scores.end(), hasLowerScore<Map>);
}

/** Returns another process with more than half of the best one's decisive marks. */
std::optional<TraceWarning> findRival(const Scores& scores, int32_t pid, size_t decisive) {
    Scores others = scores;
    const int64_t bestCount = others[pid][decisive];
    others.erase(pid);
    if (others.empty()) return {};
    const auto& [otherPid, score] = *maxOf(others);
    if (score[decisive] * 2 <= bestCount) return {};
    return TraceWarning{
            TraceWarning::Kind::OtherCompositor, {score[decisive], 0}, 0, pid, otherPid};
}

}  // namespace

Compositor::Compositor(const TraceMarks& marks, const std::string& path) : mMarks(marks) {
    findProcess(path);
    mTid = findThread();
}

void Compositor::findProcess(const std::string& path) {
    Scores scores;
    for (const Section& section : mMarks.sections())
        ++scores[section.pid][section.isCommit() ? Commits : Sure];
    for (const CounterTrack& track : tracks())
        scores[track.pid][evidenceOf(track)] += track.values;

    const auto best = scores.empty() ? scores.end() : maxOf(scores);
    size_t decisive = 0;
    while (best != scores.end() && decisive < OtherCounters && best->second[decisive] == 0)
        ++decisive;
    if (best == scores.end() || decisive == OtherCounters) {
        throw InputError(path +
                         ": no process has compositions, vsync counters or buffer counters; record "
                         "the trace with graphics events (gfx)");
    }
    mPid = best->first;
    mRivalWarning = findRival(scores, mPid, decisive);
}

int32_t Compositor::findThread() const {
    std::map<int32_t, std::array<int64_t, 2>> sections;
    for (const Section& section : mMarks.sections()) {
        if (section.pid == mPid) ++sections[section.begin.tid][section.isCommit() ? 1 : 0];
    }
    if (!sections.empty()) return maxOf(sections)->first;

    std::map<int32_t, int64_t> falls;
    for (const CounterTrack& track : tracks()) {
        if (track.role != CounterRole::Candidate && track.role != CounterRole::BufferTx) continue;
        int64_t last = 0;
        for (const CounterChange& change : changesOf(track)) {
            if (change.value < last) ++falls[change.tid];
            last = change.value;
        }
    }
    return falls.empty() ? mPid : maxOf(falls)->first;
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

const Compositor::Changes& Compositor::changesOf(const CounterTrack& track) const {
    static const Changes kNone;
    return track.pid == mPid ? track.changes : kNone;
}

const Compositor::Changes& Compositor::changesOf(std::string_view name) const {
    static const Changes kNone;
    const auto found = std::find_if(
            tracks().begin(), tracks().end(),
            [&](const CounterTrack& track) { return track.pid == mPid && track.name == name; });
    return found == tracks().end() ? kNone : found->changes;
}

}  // namespace brevold::trace
