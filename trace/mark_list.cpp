#include "trace/mark_list.h"

#include <algorithm>
#include <numeric>

namespace brevold::trace {

void MarkList::add(const TraceMark& mark) {
    mEntries.push_back({mark.timeNs, mark.value, mark.tid, labelOf(mark)});
}

uint32_t MarkList::labelOf(const TraceMark& mark) {
    const auto known = mLabelIndices.find({mark.kind, mark.pid, mark.name});
    if (known != mLabelIndices.end()) return known->second;
    const auto index = static_cast<uint32_t>(mLabels.size());
    mLabels.push_back({mark.kind, mark.pid, mNames.emplace_back(mark.name)});
    mLabelIndices.emplace(mLabels.back(), index);
    return index;
}

void MarkList::endRun() {
    const auto begin = mEntries.begin() + static_cast<std::ptrdiff_t>(mRunBegin);
    if (begin == mEntries.end()) return;
    const auto isEarlier = [](const Entry& a, const Entry& b) { return a.timeNs < b.timeNs; };
    if (!std::is_sorted(begin, mEntries.end(), isEarlier)) {
        std::stable_sort(begin, mEntries.end(), isEarlier);
    }
    mRuns.push_back({mRunBegin, mEntries.size()});
    mRunBegin = mEntries.size();
}

bool MarkList::isLater(size_t runA, size_t runB) const {
    const size_t a = mRuns[runA].next;
    const size_t b = mRuns[runB].next;
    const int64_t timeNs = entryAt(a).timeNs;
    const int64_t otherNs = entryAt(b).timeNs;
    return timeNs != otherNs ? timeNs > otherNs : a > b;
}

void MarkList::startMerge() {
    endRun();
    mIsMerging = true;
    mWaiting.resize(mRuns.size());
    std::iota(mWaiting.begin(), mWaiting.end(), size_t{0});
    std::sort(mWaiting.begin(), mWaiting.end(),
              [this](size_t a, size_t b) { return isLater(a, b); });
}

bool MarkList::next(TraceMark* mark) {
    if (!mIsMerging) startMerge();
    const auto isLaterRun = [this](size_t a, size_t b) { return isLater(a, b); };
    // Only the runs that have begun are in the heap: about one for each processor.
    while (!mWaiting.empty() && (mActive.empty() || isLater(mActive.front(), mWaiting.back()))) {
        mActive.push_back(mWaiting.back());
        mWaiting.pop_back();
        std::push_heap(mActive.begin(), mActive.end(), isLaterRun);
    }
    if (mActive.empty()) return false;

    std::pop_heap(mActive.begin(), mActive.end(), isLaterRun);
    Run& run = mRuns[mActive.back()];
    const Entry& entry = entryAt(run.next++);
    const Label& label = mLabels[entry.label];
    *mark = {label.kind, entry.timeNs, entry.tid, label.pid, label.name, entry.value, ++mTaken};
    if (run.next == run.end) {
        mActive.pop_back();
    } else {
        std::push_heap(mActive.begin(), mActive.end(), isLaterRun);
    }
    freeTaken();
    return true;
}

void MarkList::freeTaken() {
    for (; mFirstRun < mRuns.size(); ++mFirstRun) {
        const Run& run = mRuns[mFirstRun];
        for (; mFreed < run.next; ++mFreed)
            mEntries.pop_front();
        if (run.next < run.end) break;
    }
}

}  // namespace brevold::trace
