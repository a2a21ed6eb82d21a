#include "trace/refresh_period.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace brevold::trace {
namespace {

constexpr int64_t kKnownPeriodsNs[] = {kPeriod60Ns, kPeriod90Ns, kPeriod120Ns};
constexpr int64_t kSnapPercent = 3;
// Larger than kSnapPercent: a rate at the edge of the snap must not alternate.
constexpr int64_t kStayPercent = 4;
constexpr int64_t kMaxTicks = 3;
constexpr int64_t kMaxIntervalNs = 52'000'000;
constexpr size_t kMaxWindow = 15;

/** How many intervals decide. */
struct Caution {
    size_t window;  // the median of this many gives the period, so most of them have to agree
    size_t confirmations;
};

constexpr Caution cautionOf(IntervalKind kind) {
    return kind == IntervalKind::DisplayTick ? Caution{kDisplayTicksToFollow, 2}
                                             : Caution{kMaxWindow, 12};
}

bool isWithin(int64_t percent, int64_t lengthNs, int64_t referenceNs) {
    return std::abs(lengthNs - referenceNs) * 100 <= referenceNs * percent;
}

bool isTicksOf(int64_t lengthNs, int64_t periodNs) {
    for (int64_t ticks = 1; ticks <= kMaxTicks; ++ticks) {
        if (isWithin(kSnapPercent, lengthNs, ticks * periodNs)) return true;
    }
    return false;
}

bool isKnownPeriod(int64_t periodNs) {
    return std::find(std::begin(kKnownPeriodsNs), std::end(kKnownPeriodsNs), periodNs) !=
           std::end(kKnownPeriodsNs);
}

/** The intervals from which the current period is read. */
class Window {
  public:
    Window(const Interval* begin, const Interval* end) {
        for (const Interval* i = begin; i != end; ++i)
            mLengthsNs[mSize++] = i->lengthNs;
        std::nth_element(mLengthsNs, mLengthsNs + mSize / 2, mLengthsNs + mSize);
    }

    int64_t medianNs() const { return mLengthsNs[mSize / 2]; }

    bool isSteady() const {
        const auto near = std::count_if(mLengthsNs, mLengthsNs + mSize, [this](int64_t lengthNs) {
            return isWithin(kSnapPercent, lengthNs, medianNs());
        });
        return static_cast<size_t>(near) * 3 >= mSize * 2;
    }

    /** Returns the period, or 0 if it is unclear. currentNs is the last period read, or 0. */
    int64_t readPeriodNs(int64_t currentNs, IntervalKind kind) const {
        const int64_t lengthNs = medianNs();
        if (currentNs > 0 && isWithin(kStayPercent, lengthNs, currentNs)) return currentNs;
        const int64_t snappedNs = snapPeriod(lengthNs);
        if (isKnownPeriod(snappedNs)) return snappedNs;
        if (kind == IntervalKind::DisplayTick) return isSteady() ? lengthNs : 0;
        if (currentNs > 0 && isTicksOf(lengthNs, currentNs)) return currentNs;
        for (const int64_t periodNs : kKnownPeriodsNs) {
            if (isTicksOf(lengthNs, periodNs)) return periodNs;
        }
        return kind == IntervalKind::RequestedTick && isSteady() ? lengthNs : 0;
    }

  private:
    int64_t mLengthsNs[kMaxWindow];
    size_t mSize = 0;
};

/** Returns the first interval of the new period: from it to `last`, most are nearer to newNs. */
size_t firstOfNewPeriod(const std::vector<Interval>& intervals, size_t first, size_t last,
                        int64_t oldNs, int64_t newNs) {
    int score = 0;
    int bestScore = 0;
    size_t best = last;
    for (size_t i = last + 1; i-- > first;) {
        const int64_t lengthNs = intervals[i].lengthNs;
        score += std::abs(lengthNs - newNs) < std::abs(lengthNs - oldNs) ? 1 : -1;
        if (score >= bestScore) {
            bestScore = score;
            best = i;
        }
    }
    return best;
}

}  // namespace

int64_t snapPeriod(int64_t periodNs) {
    for (const int64_t knownNs : kKnownPeriodsNs) {
        if (isWithin(kSnapPercent, periodNs, knownNs)) return knownNs;
    }
    return periodNs;
}

int64_t periodOfRate(double rateHz) {
    for (const int64_t knownNs : kKnownPeriodsNs) {
        if (rateHz == std::round(1e9 / static_cast<double>(knownNs))) return knownNs;
    }
    return std::llround(1e9 / rateHz);
}

std::vector<PeriodChange> followPeriod(std::vector<Interval> intervals, IntervalKind kind) {
    const auto isPause = [](const Interval& interval) {
        return interval.lengthNs <= 0 || interval.lengthNs > kMaxIntervalNs;
    };
    intervals.erase(std::remove_if(intervals.begin(), intervals.end(), isPause), intervals.end());
    std::vector<PeriodChange> changes;
    if (intervals.size() < 2) return changes;

    const Caution caution = cautionOf(kind);
    const size_t window = std::min(caution.window, intervals.size());
    int64_t currentNs = 0;
    int64_t pendingNs = 0;
    size_t pendingSince = 0;
    size_t confirmations = 0;
    size_t sinceChange = 0;
    for (size_t last = window - 1; last < intervals.size(); ++last) {
        const Interval* end = intervals.data() + last + 1;
        const int64_t readNs = Window(end - window, end).readPeriodNs(currentNs, kind);
        if (readNs == 0) continue;
        if (readNs == currentNs) {
            confirmations = 0;
            continue;
        }
        if (currentNs == 0) {
            changes.push_back({intervals[0].endNs, readNs});
            currentNs = readNs;
            continue;
        }
        const bool isSame = confirmations > 0 && isWithin(kSnapPercent, readNs, pendingNs);
        confirmations = isSame ? confirmations + 1 : 1;
        if (!isSame) pendingSince = last + 1 - window;
        pendingNs = readNs;
        if (confirmations < caution.confirmations) continue;

        const size_t first = firstOfNewPeriod(intervals, std::max(pendingSince, sinceChange), last,
                                              currentNs, readNs);
        changes.push_back({intervals[first].endNs - intervals[first].lengthNs, readNs});
        currentNs = readNs;
        sinceChange = first;
        confirmations = 0;
    }
    return changes;
}

}  // namespace brevold::trace
