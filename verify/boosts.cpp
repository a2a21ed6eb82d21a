#include "verify/boosts.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace brevold::verify {

namespace {

constexpr int64_t kNearDifferenceNs = 1'000'000'000;
constexpr int64_t kMaxBoostDelayNs = 1'000'000'000;

Cause causeOf(replay::BoostDepth depth) {
    return depth == replay::BoostDepth::Left ? Cause::BoostDepthLeft : Cause::BoostDepthFound;
}

/** Returns the causes of the nearest of the sorted differences, or none if none is near. */
CauseSet nearestCauses(const std::vector<Difference>& differences, size_t count, int64_t timeNs) {
    const auto end = differences.begin() + static_cast<std::ptrdiff_t>(count);
    auto next = std::lower_bound(
            differences.begin(), end, timeNs,
            [](const Difference& difference, int64_t t) { return difference.timeNs < t; });
    if (next == end ||
        (next != differences.begin() && timeNs - std::prev(next)->timeNs < next->timeNs - timeNs)) {
        if (next == differences.begin()) return {};
        --next;
    }
    return std::abs(next->timeNs - timeNs) <= kNearDifferenceNs ? next->causes : CauseSet();
}

/** Finds boosts that the worker may have sent late, or not at all. */
class WorkerCause {
  public:
    WorkerCause(const Boosts& recorded, const Boosts& replayed,
                const std::vector<int64_t>& compositionsNs)
          : mRecorded(recorded), mReplayed(replayed), mCompositionsNs(compositionsNs) {}

    /** Returns the cause for a composition after which only one of them has a boost, if any. */
    CauseSet of(size_t composition) const {
        const int64_t timeNs = mCompositionsNs[composition];
        if (mReplayed.isAfter(composition)) {
            for (size_t i = composition + 1;
                 i < mCompositionsNs.size() && mCompositionsNs[i] <= timeNs + kMaxBoostDelayNs;
                 ++i) {
                if (mRecorded.isAfter(i) && !mReplayed.isAfter(i)) return Cause::BoostLate;
            }
            return Cause::BoostNotSent;
        }
        for (size_t i = composition; i-- > 0 && mCompositionsNs[i] >= timeNs - kMaxBoostDelayNs;) {
            if (mReplayed.isAfter(i) && !mRecorded.isAfter(i)) return Cause::BoostLate;
        }
        return {};
    }

  private:
    const Boosts& mRecorded;
    const Boosts& mReplayed;
    const std::vector<int64_t>& mCompositionsNs;
};

}  // namespace

Boosts::Boosts(const std::vector<int64_t>& timesNs, const Expectation& expected,
               const ModeEvidence& modes)
      : mIsAfter(expected.compositionsNs.size()) {
    const std::vector<int64_t>& compositionsNs = expected.compositionsNs;
    for (const int64_t timeNs : timesNs) {
        const auto next = std::upper_bound(compositionsNs.begin(), compositionsNs.end(), timeNs);
        if (next == compositionsNs.begin()) continue;
        // A window that ends with the composition is marked a little after its beginning.
        const int64_t postedNs = *std::prev(next) + kTimeToleranceNs;
        mIsAfter[static_cast<size_t>(next - compositionsNs.begin()) - 1] =
                postedNs >= expected.periodKnownFromNs &&
                modes.expectedModeAt(postedNs) == modes.replayedModeAt(postedNs);
    }
}

BoostReplay fitBoosts(const Boosts& recorded, const replay::Recording& replayed,
                      replay::BoostDepth depth, const Expectation& expected,
                      const ModeEvidence& modes) {
    std::vector<int64_t> timesNs;
    for (const host::Hint& hint : replayed.hints) {
        if (hint.kind == host::HintKind::JankBoost) timesNs.push_back(hint.timeNs);
    }
    BoostReplay result = {{depth, 0, 0}, Boosts(timesNs, expected, modes)};
    for (size_t i = 0; i < expected.compositionsNs.size(); ++i) {
        const bool isReplayed = result.boosts.isAfter(i);
        result.fit.compositions += recorded.isAfter(i) || isReplayed ? 1 : 0;
        result.fit.agreeing += recorded.isAfter(i) && isReplayed ? 1 : 0;
    }
    return result;
}

std::vector<int64_t> commonBoostsNs(const Boosts& recorded, const Boosts& replayed,
                                    const std::vector<int64_t>& compositionsNs) {
    std::vector<int64_t> timesNs;
    for (size_t i = 0; i < compositionsNs.size(); ++i) {
        if (recorded.isAfter(i) && replayed.isAfter(i)) timesNs.push_back(compositionsNs[i]);
    }
    return timesNs;
}

void compareBoosts(const Boosts& recorded, const BoostReplay& replayed, const BoostReplay* other,
                   const std::vector<int64_t>& compositionsNs, const ModeEvidence& modes,
                   Differences* differences) {
    const auto countOf = [](const BoostFit& fit) { return fit.compositions - fit.agreeing; };
    const bool isOtherBetter = other != nullptr && countOf(other->fit) * 2 <= countOf(replayed.fit);
    const size_t decisions = differences->list().size();
    const WorkerCause workerCause(recorded, replayed.boosts, compositionsNs);
    const auto causesAt = [&](size_t i) -> CauseSet {
        const int64_t timeNs = compositionsNs[i];
        if (modes.modeAt(timeNs) != modes.replayedModeAt(timeNs)) return modes.causeAt(timeNs);
        CauseSet causes = nearestCauses(differences->list(), decisions, timeNs);
        if (causes == Cause::OtherLayer) return causes;
        if (isOtherBetter && recorded.isAfter(i) == other->boosts.isAfter(i)) {
            CauseSet depths = causeOf(other->fit.depth);
            if (other->fit.agreeing == 0) depths.add(workerCause.of(i));
            return depths;
        }
        // Most wrong reports of frames suppress boosts too.
        if (!causes.isEmpty()) return causes;
        causes = workerCause.of(i);
        causes.add(Cause::BoostDepthOther);
        return causes;
    };
    for (size_t i = 0; i < compositionsNs.size(); ++i) {
        if (!recorded.isAfter(i) && !replayed.boosts.isAfter(i)) continue;
        if (recorded.isAfter(i) == replayed.boosts.isAfter(i)) {
            differences->addAgreement(Subject::Boost, compositionsNs[i]);
        } else {
            differences->add(Subject::Boost, compositionsNs[i], causesAt(i));
        }
    }
}

}  // namespace brevold::verify
