#include "trace/mark_list.h"

#include <algorithm>
#include <tuple>

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
    mRuns.push_back({begin->timeNs, mRunBegin, mEntries.size()});
    mRunBegin = mEntries.size();
}

bool MarkList::isLater(const Run& a, const Run& b) {
    return std::tie(a.timeNs, a.next) > std::tie(b.timeNs, b.next);
}

void MarkList::startMerge() {
    endRun();
    mIsMerging = true;
    std::sort(mRuns.begin(), mRuns.end(), isLater);
}

bool MarkList::next(TraceMark* mark) {
    if (!mIsMerging) startMerge();
    // Only the runs that have begun are in the heap: about one for each processor.
    while (!mRuns.empty() && (mActive.empty() || isLater(mActive.front(), mRuns.back()))) {
        mActive.push_back(mRuns.back());
        mRuns.pop_back();
        std::push_heap(mActive.begin(), mActive.end(), isLater);
    }
    if (mActive.empty()) return false;

    std::pop_heap(mActive.begin(), mActive.end(), isLater);
    Run& run = mActive.back();
    const Entry& entry = mEntries[run.next++];
    const Label& label = mLabels[entry.label];
    *mark = {label.kind, entry.timeNs, entry.tid, label.pid, label.name, entry.value, ++mTaken};
    if (run.next == run.end) {
        mActive.pop_back();
    } else {
        run.timeNs = mEntries[run.next].timeNs;
        std::push_heap(mActive.begin(), mActive.end(), isLater);
    }
    return true;
}

}  // namespace brevold::trace
