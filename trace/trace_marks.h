#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "trace/change_list.h"
#include "trace/counter_role.h"
#include "trace/timeline.h"
#include "trace/trace_mark.h"
#include "trace/trace_point.h"

namespace brevold::trace {

/** A counter of one process. */
struct CounterTrack {
    int32_t pid;
    std::string name;
    CounterRole role;
    bool hasSlots;      // the process has sections "name: <slot>"
    int64_t values;     // including those equal to the previous one
    int64_t lastValue;  // not clamped
    ChangeList changes;
};

/** A section in which the compositor composes or commits, or a group of latches in its place. */
struct Section {
    CompositionSource kind;
    int32_t pid;
    TracePoint begin;
    TracePoint end;

    bool isCommit() const { return kind == CompositionSource::Commit; }
};

/** Collects, for every process, the marks that may identify a compositor. */
class TraceMarks {
  public:
    void add(const TraceMark& mark);

    const std::deque<CounterTrack>& tracks() const { return mTracks; }
    /**
     * The sections, in the order of their ends. Composing sections inside composing ones and
     * commits inside commits are omitted. If the trace lost the end of a section, the section ends
     * where the thread composes or commits again.
     */
    const std::deque<Section>& sections() const { return mSections; }

    // Move them out; add no marks after that.
    std::deque<CounterTrack> takeTracks() { return std::move(mTracks); }
    std::deque<Section> takeSections() { return std::move(mSections); }

  private:
    struct TrackKey {
        int32_t pid;
        std::string_view name;
        bool operator==(const TrackKey& other) const {
            return pid == other.pid && name == other.name;
        }
    };
    struct TrackHash {
        size_t operator()(const TrackKey& key) const {
            return std::hash<std::string_view>()(key.name) + static_cast<size_t>(key.pid);
        }
    };
    struct OpenSection {
        Section section;
        size_t level;  // number of sections of any kind around it
    };
    struct Thread {
        size_t level = 0;               // number of open sections of any kind
        std::vector<OpenSection> open;  // those that compose or commit, outermost first
    };

    size_t trackOf(int32_t pid, std::string_view name);
    void addValue(const TraceMark& mark);
    void begin(const TraceMark& mark);
    void end(const TraceMark& mark);
    void closeInnermost(Thread& thread, TracePoint end);

    // A deque, because the keys point to the names.
    std::deque<CounterTrack> mTracks;
    std::unordered_map<TrackKey, size_t, TrackHash> mTrackIndices;
    std::unordered_map<int32_t, Thread> mThreads;
    std::deque<Section> mSections;
};

}  // namespace brevold::trace
