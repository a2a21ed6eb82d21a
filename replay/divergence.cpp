#include "replay/divergence.h"

#include <algorithm>
#include <map>

namespace brevold::replay {

namespace {

bool isSameHint(const host::Hint& a, const host::Hint& b) {
    return a.kind == b.kind && a.durationMs == b.durationMs && a.type == b.type;
}

bool isSameMoment(const Moment& a, const Moment& b) {
    return a.verdicts == b.verdicts &&
           std::equal(a.hints.begin(), a.hints.end(), b.hints.begin(), b.hints.end(), isSameHint);
}

using Moments = std::map<int64_t, Divergence>;

void addMoments(const Recording& recording, Moment Divergence::*side, Moments* moments) {
    for (const host::Hint& hint : recording.hints)
        ((*moments)[hint.timeNs].*side).hints.push_back(hint);
    for (const int64_t timeNs : recording.verdictTimesNs)
        ++((*moments)[timeNs].*side).verdicts;
}

}  // namespace

std::vector<Divergence> firstDivergences(const Recording& first, const Recording& second,
                                         const TimeWindow& window, size_t maxCount) {
    Moments moments;
    addMoments(first, &Divergence::first, &moments);
    addMoments(second, &Divergence::second, &moments);
    std::vector<Divergence> divergences;
    for (auto& [timeNs, moment] : moments) {
        if (divergences.size() == maxCount) break;
        if (!window.contains(timeNs) || isSameMoment(moment.first, moment.second)) continue;
        moment.timeNs = timeNs;
        divergences.push_back(std::move(moment));
    }
    return divergences;
}

}  // namespace brevold::replay
