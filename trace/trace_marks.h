#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

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
    bool hasSlots;  // the process has sections "name: <slot>"
};

struct CounterValue {
    TracePoint at;
    int64_t value;
    int32_t track;  // index of its CounterTrack
};

/** A section in which the compositor composes or commits. */
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
    /** In the order of their lines. */
    const std::vector<CounterValue>& counters() const { return mCounters; }
    /**
     * The complete sections, in the order of their ends. Composing sections inside composing ones
     * and commits inside commits are omitted.
     */
    const std::vector<Section>& sections() const { return mSections; }

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
    struct Thread {
        // The open sections, outermost first, and details of those that compose or commit.
        std::vector<std::optional<CompositionSource>> nesting;
        std::vector<Section> open;
    };

    size_t trackOf(int32_t pid, std::string_view name);
    void begin(const TraceMark& mark);
    void end(const TraceMark& mark);

    // A deque, because the keys point to the names.
    std::deque<CounterTrack> mTracks;
    std::unordered_map<TrackKey, size_t, TrackHash> mTrackIndices;
    std::unordered_map<int32_t, Thread> mThreads;
    std::vector<CounterValue> mCounters;
    std::vector<Section> mSections;
};

}  // namespace brevold::trace
