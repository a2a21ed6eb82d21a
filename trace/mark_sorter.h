#pragma once

#include <cstdint>
#include <deque>
#include <queue>
#include <string>
#include <vector>

#include "trace/trace_mark.h"

namespace brevold::trace {

/** Puts marks that come slightly out of order into the order of time. Copies their names. */
class MarkSorter {
  public:
    /** Adds a mark whose time is not before lastTakenNs(). */
    void add(const TraceMark& mark);

    /**
     * Takes the earliest mark, of the same time the one that was added first. Its name is valid
     * until the next call. Returns false if no mark has a time up to untilNs, unless so many wait
     * that one has to be taken.
     */
    bool take(int64_t untilNs, TraceMark* mark);

    int64_t lastTakenNs() const { return mLastTakenNs; }

  private:
    struct Waiting {
        TraceMark mark;
        size_t name;  // index into mNames
    };
    struct IsLater {
        bool operator()(const Waiting& a, const Waiting& b) const;
    };

    std::deque<Waiting> mInOrder;
    std::priority_queue<Waiting, std::vector<Waiting>, IsLater> mLate;
    std::deque<std::string> mNames;
    std::vector<size_t> mFreeNames;
    size_t mTakenName = 0;
    bool mHasTaken = false;
    int64_t mLastTakenNs = 0;
};

}  // namespace brevold::trace
