#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "trace/trace_mark.h"

namespace brevold::trace {

/**
 * Merges marks that come in runs, such as the bundles of each processor, in the order of time.
 * Takes 24 bytes for each mark until it is taken, and the names.
 */
class MarkList {
  public:
    void add(const TraceMark& mark);
    /** Makes a run of the marks added since the previous call, which it sorts by time. */
    void endRun();

    /**
     * Takes the earliest mark that is left, and of several at that time the one that was added
     * first. Numbers them from 1. The name is valid as long as the list. Returns false at the end.
     * Add no marks after the first call.
     */
    bool next(TraceMark* mark);

  private:
    /** What marks have in common, apart from their thread. */
    struct Label {
        TraceMark::Kind kind;
        int32_t pid;
        std::string_view name;
        bool operator==(const Label& other) const {
            return kind == other.kind && pid == other.pid && name == other.name;
        }
    };
    struct LabelHash {
        size_t operator()(const Label& label) const {
            return std::hash<std::string_view>()(label.name) + static_cast<size_t>(label.pid);
        }
    };
    struct Entry {
        int64_t timeNs;
        int64_t value;
        int32_t tid;
        uint32_t label;
    };
    struct Run {
        size_t next;
        size_t end;
    };

    const Entry& entryAt(size_t position) const { return mEntries[position - mFreed]; }
    bool isLater(size_t runA, size_t runB) const;
    uint32_t labelOf(const TraceMark& mark);
    void startMerge();
    void freeTaken();

    // Deques, because they do not move their elements and can be freed from the front; labels are
    // views of the names.
    std::deque<Entry> mEntries;
    std::deque<std::string> mNames;
    std::vector<Label> mLabels;
    std::unordered_map<Label, uint32_t, LabelHash> mLabelIndices;

    size_t mRunBegin = 0;
    std::vector<Run> mRuns;  // in the order of their positions
    size_t mFreed = 0;       // entries freed, which were the first ones
    size_t mFirstRun = 0;    // that is not freed
    // Indices of runs whose marks are not yet merged, the earliest run last, and of those whose
    // marks are: a heap with the earliest at its front.
    std::vector<size_t> mWaiting;
    std::vector<size_t> mActive;
    bool mIsMerging = false;
    int64_t mTaken = 0;
};

}  // namespace brevold::trace
