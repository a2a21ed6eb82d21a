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

template <typename T, typename Predicate>
void removeIf(std::deque<T>* items, Predicate isRemoved) {
    items->erase(std::remove_if(items->begin(), items->end(), isRemoved), items->end());
}

}  // namespace

Compositor::Compositor(TraceMarks marks, const std::string& path) {
    findProcess(marks, path);
    mTracks = marks.takeTracks();
    mSections = marks.takeSections();
    const auto isOther = [this](const auto& mark) { return mark.pid != mPid; };
    removeIf(&mTracks, isOther);
    removeIf(&mSections, isOther);
    mTid = findThread();
}

void Compositor::findProcess(const TraceMarks& marks, const std::string& path) {
    Scores scores;
    for (const Section& section : marks.sections())
        ++scores[section.pid][section.isCommit() ? Commits : Sure];
    for (const CounterTrack& track : marks.tracks())
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
    for (const Section& section : mSections)
        ++sections[section.begin.tid][section.isCommit() ? 1 : 0];
    if (!sections.empty()) return maxOf(sections)->first;

    std::map<int32_t, int64_t> falls;
    for (const CounterTrack& track : mTracks) {
        if (track.role != CounterRole::Candidate && track.role != CounterRole::BufferTx) continue;
        int64_t last = 0;
        track.changes.forEach([&](const CounterChange& change) {
            if (change.value < last) ++falls[change.tid];
            last = change.value;
        });
    }
    return falls.empty() ? mPid : maxOf(falls)->first;
}

std::deque<Section> Compositor::takeCompositions() {
    std::deque<Section> sections = std::move(mSections);
    removeIf(&sections, [this](const Section& section) { return section.begin.tid != mTid; });
    const bool composes = std::any_of(sections.begin(), sections.end(),
                                      [](const Section& section) { return !section.isCommit(); });
    removeIf(&sections, [&](const Section& section) { return section.isCommit() == composes; });
    return sections;
}

}  // namespace brevold::trace
