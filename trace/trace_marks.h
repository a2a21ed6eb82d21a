#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "trace/ftrace_reader.h"

namespace brevold::trace {

/** What a counter may be, going by its name. */
enum class CounterRole : uint8_t { Candidate, BufferTx, Vsync, SetPeriod, Unrelated };

/** What the name of a layer follows in the counters of Android 12 and later. */
constexpr std::string_view kBufferTx = "BufferTX - ";

/** A counter of one process. */
struct CounterTrack {
    int32_t pid;
    std::string name;
    CounterRole role;
    bool hasSlots;  // the process has sections "name: <slot>"
};

struct CounterValue {
    int64_t timeNs;
    int64_t line;
    int64_t value;
    int32_t track;  // index of its CounterTrack
    int32_t tid;
};

/** Names of the sections in which the compositor composes, bare or followed by an argument. */
constexpr std::string_view kSectionNames[] = {"onMessageRefresh", "handleMessageRefresh",
                                              "composite", "postFramebuffer", "commit"};
constexpr int8_t kCommitSection = 4;

struct Section {
    int8_t kind;  // index of its name
    int32_t pid;
    int32_t tid;
    int64_t beginNs;
    int64_t beginLine;
    int64_t endNs;
    int64_t endLine;
};

/** Keeps of the marks of a trace, of all processes, what may tell of a compositor. */
class TraceMarks {
  public:
    void add(const TraceMark& mark);

    const std::deque<CounterTrack>& tracks() const { return mTracks; }
    /** In the order of their lines. */
    const std::vector<CounterValue>& counters() const { return mCounters; }
    /**
     * In the order of their ends; without those inside of another one, where commits count apart
     * from the rest, and without those that lack a begin or an end.
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
        std::vector<int8_t> nesting;  // kinds of all the open sections, -1 for those of no interest
        std::vector<Section> open;    // the others
    };

    size_t trackOf(int32_t pid, std::string_view name);
    void begin(const TraceMark& mark);
    void end(const TraceMark& mark);

    // A deque, as the keys point to the names.
    std::deque<CounterTrack> mTracks;
    std::unordered_map<TrackKey, size_t, TrackHash> mTrackIndices;
    std::unordered_map<int32_t, Thread> mThreads;
    std::vector<CounterValue> mCounters;
    std::vector<Section> mSections;
};

}  // namespace brevold::trace
