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
    bool isEarly;  // does not count for the verdict
};

struct Tally {
    int64_t count = 0;
    int64_t differing = 0;
    // Those that count for the verdict: all requests and releases; decisions and boosts after the
    // first two measuring windows.
    int64_t verdictCount = 0;
    int64_t verdictDiffering = 0;

    /** Returns true if at most this share of those that count differs. */
    bool isWithin(double percent) const {
        return static_cast<double>(verdictDiffering) * 100.0 <=
               static_cast<double>(verdictCount) * percent;
    }

    /** Returns true if there are differences, but none of the comparisons counts. */
    bool isTooShort() const { return verdictCount == 0 && differing > 0; }
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
    // Workers do not depend on the measuring windows.
    bool isEarly(Subject subject, int64_t timeNs) const {
        return (subject == Subject::Decision || subject == Subject::Boost) &&
               timeNs <= mEarlyUntilNs;
    }
    void count(Subject subject, int64_t timeNs, bool differs);

    int64_t mEarlyUntilNs;
    std::array<Tally, kSubjectCount> mTallies;
    std::vector<Difference> mList;
};

}  // namespace brevold::verify
