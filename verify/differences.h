#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "verify/cause.h"

namespace brevold::verify {

/** The subject of a comparison or a check. */
enum class Subject : uint8_t {
    Decision,  // recorded with replayed DOWN and UP decisions
    Boost,     // recorded with replayed boosts
    Request,   // recorded, sent by the worker within a refresh period of the decision
    Release,   // recorded, of each boost
};
constexpr size_t kSubjectCount = 4;

struct Difference {
    int64_t timeNs;
    Subject subject;
    CauseSet causes;
    bool isEarly;  // within the first two measuring windows of the replay
};

struct Tally {
    int64_t count = 0;
    int64_t differing = 0;
    // Of those, after the first two measuring windows.
    int64_t lateCount = 0;
    int64_t lateDiffering = 0;

    /** Returns true if at most this share differs after the first two windows. */
    bool isWithin(double percent) const {
        return static_cast<double>(lateDiffering) * 100.0 <=
               static_cast<double>(lateCount) * percent;
    }
};

/** Counts agreements and collects differences. */
class Differences {
  public:
    /** The first two measuring windows last until `earlyUntilNs`. */
    explicit Differences(int64_t earlyUntilNs) : mEarlyUntilNs(earlyUntilNs) {}

    void addAgreement(Subject subject, int64_t timeNs) { count(subject, timeNs, false); }
    void add(Subject subject, int64_t timeNs, const CauseSet& causes);

    int64_t earlyUntilNs() const { return mEarlyUntilNs; }
    const Tally& of(Subject subject) const { return mTallies[static_cast<size_t>(subject)]; }
    /** In the order of time, if sort() was called last. */
    const std::vector<Difference>& list() const { return mList; }
    void sort();

    /**
     * Removes causes that are not needed: a difference keeps only those of its causes that also
     * explain enough other differences alone. The most frequent set of causes is preferred.
     */
    void narrowCauses();

  private:
    bool isEarly(int64_t timeNs) const { return timeNs <= mEarlyUntilNs; }
    void count(Subject subject, int64_t timeNs, bool differs);

    int64_t mEarlyUntilNs;
    std::array<Tally, kSubjectCount> mTallies;
    std::vector<Difference> mList;
};

}  // namespace brevold::verify
