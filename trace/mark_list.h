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
 * Takes 24 bytes for each mark, and the names.
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
        int64_t timeNs;  // of its next entry
        size_t next;
        size_t end;
    };

    static bool isLater(const Run& a, const Run& b);
    uint32_t labelOf(const TraceMark& mark);
    void startMerge();

    // Deques, because they do not move their elements; labels are views of the names.
    std::deque<Entry> mEntries;
    std::deque<std::string> mNames;
    std::vector<Label> mLabels;
    std::unordered_map<Label, uint32_t, LabelHash> mLabelIndices;

    size_t mRunBegin = 0;
    std::vector<Run> mRuns;    // not begun; once the merge has started, the earliest is the last
    std::vector<Run> mActive;  // a heap with the earliest at its front
    bool mIsMerging = false;
    int64_t mTaken = 0;
};

}  // namespace brevold::trace
