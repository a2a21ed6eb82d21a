#include "verify/differences.h"

#include <algorithm>

namespace brevold::verify {

namespace {

/** A set of causes explains another one if that is at most this many times as frequent. */
constexpr int64_t kMaxTimesExplained = 10;

struct CauseCount {
    CauseSet causes;
    int64_t count;
};

std::vector<CauseCount> countCauses(const std::vector<Difference>& differences) {
    std::vector<CauseCount> counts;
    for (const Difference& difference : differences) {
        const auto known = std::find_if(counts.begin(), counts.end(), [&](const CauseCount& other) {
            return other.causes == difference.causes;
        });
        if (known == counts.end()) {
            counts.push_back({difference.causes, 1});
        } else {
            ++known->count;
        }
    }
    return counts;
}

/** Returns the most frequent set of causes that explains this one, or null if none does. */
const CauseCount* narrowerThan(const CauseSet& causes, const std::vector<CauseCount>& counts) {
    const auto wide = std::find_if(counts.begin(), counts.end(),
                                   [&](const CauseCount& other) { return other.causes == causes; });
    const CauseCount* best = nullptr;
    for (const CauseCount& narrow : counts) {
        const bool explains = narrow.causes != causes && narrow.causes.isSubsetOf(causes) &&
                              narrow.count * kMaxTimesExplained >= wide->count;
        if (explains && (best == nullptr || narrow.count > best->count)) best = &narrow;
    }
    return best;
}

}  // namespace

void Differences::add(Subject subject, int64_t timeNs, const CauseSet& causes) {
    count(subject, timeNs, true);
    mList.push_back({timeNs, subject, causes, isEarly(subject, timeNs)});
}

void Differences::sort() {
    std::stable_sort(mList.begin(), mList.end(),
                     [](const Difference& a, const Difference& b) { return a.timeNs < b.timeNs; });
}

void Differences::narrowCauses() {
    const std::vector<CauseCount> counts = countCauses(mList);
    for (Difference& difference : mList) {
        while (const CauseCount* const narrow = narrowerThan(difference.causes, counts))
            difference.causes = narrow->causes;
    }
}

void Differences::count(Subject subject, int64_t timeNs, bool differs) {
    Tally& tally = mTallies[static_cast<size_t>(subject)];
    ++tally.count;
    tally.differing += differs ? 1 : 0;
    if (isEarly(subject, timeNs)) return;
    ++tally.verdictCount;
    tally.verdictDiffering += differs ? 1 : 0;
}

}  // namespace brevold::verify
