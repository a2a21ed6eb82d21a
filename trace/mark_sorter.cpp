#include "trace/mark_sorter.h"

#include <tuple>

namespace brevold::trace {
namespace {

/** Far more than are written in a millisecond. */
constexpr size_t kMaxWaiting = 16384;

}  // namespace

bool MarkSorter::IsLater::operator()(const Waiting& a, const Waiting& b) const {
    return std::tie(a.mark.timeNs, a.mark.line) > std::tie(b.mark.timeNs, b.mark.line);
}

void MarkSorter::add(const TraceMark& mark) {
    if (mFreeNames.empty()) {
        mFreeNames.push_back(mNames.size());
        mNames.emplace_back();
    }
    const size_t name = mFreeNames.back();
    mFreeNames.pop_back();
    mNames[name].assign(mark.name);
    if (mInOrder.empty() || mark.timeNs >= mInOrder.back().mark.timeNs) {
        mInOrder.push_back({mark, name});
    } else {
        mLate.push({mark, name});
    }
}

bool MarkSorter::take(int64_t untilNs, TraceMark* mark) {
    if (mHasTaken) mFreeNames.push_back(mTakenName);
    mHasTaken = false;

    const bool isLate =
            !mLate.empty() && (mInOrder.empty() || IsLater()(mInOrder.front(), mLate.top()));
    if (!isLate && mInOrder.empty()) return false;
    const Waiting& earliest = isLate ? mLate.top() : mInOrder.front();
    const bool isFull = mInOrder.size() + mLate.size() > kMaxWaiting;
    if (earliest.mark.timeNs > untilNs && !isFull) return false;

    *mark = earliest.mark;
    mark->name = mNames[earliest.name];
    mTakenName = earliest.name;
    mHasTaken = true;
    mLastTakenNs = mark->timeNs;
    isLate ? mLate.pop() : mInOrder.pop_front();
    return true;
}

}  // namespace brevold::trace
