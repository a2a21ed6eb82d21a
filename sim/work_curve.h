#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace brevold::sim {

/** Totals up to a point in time, in nanoseconds. */
struct Progress {
    double runNs;   // of running time
    double workNs;  // of work at the maximum frequency
};

/** Running time and work since the start of a recording, which grow while something runs. */
class WorkCurve {
  public:
    /** Runs at `speed`, a share of the maximum, for a span that begins at or after the last one. */
    void add(int64_t beginNs, int64_t endNs, double speed) {
        if (endNs <= beginNs) return;
        const Progress before = mPoints.empty() ? Progress{0.0, 0.0} : mPoints.back().progress;
        const auto runNs = static_cast<double>(endNs - beginNs);
        mPoints.push_back({beginNs, before});
        mPoints.push_back({endNs, {before.runNs + runNs, before.workNs + runNs * speed}});
    }

    Progress at(int64_t timeNs) const {
        const auto next =
                std::lower_bound(mPoints.begin(), mPoints.end(), timeNs,
                                 [](const Point& point, int64_t ns) { return point.timeNs < ns; });
        if (next == mPoints.begin()) return {0.0, 0.0};
        const Point& last = *std::prev(next);
        if (next == mPoints.end()) return last.progress;
        const double share = static_cast<double>(timeNs - last.timeNs) /
                             static_cast<double>(next->timeNs - last.timeNs);
        const auto between = [=](double from, double to) { return from + share * (to - from); };
        return {between(last.progress.runNs, next->progress.runNs),
                between(last.progress.workNs, next->progress.workNs)};
    }

    Progress between(int64_t fromNs, int64_t toNs) const {
        const Progress from = at(fromNs);
        const Progress to = at(toNs);
        return {to.runNs - from.runNs, to.workNs - from.workNs};
    }

    double totalRunNs() const { return mPoints.empty() ? 0.0 : mPoints.back().progress.runNs; }

  private:
    struct Point {
        int64_t timeNs;
        Progress progress;
    };
    std::vector<Point> mPoints;
};

}  // namespace brevold::sim
