#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/line_count.h"
#include "trace/trace_marks.h"

namespace brevold::trace {

struct DepthChange {
    int64_t timeNs;
    int64_t line;
    int32_t depth;
    bool isFall;
};

struct QueuedLayer {
    std::string name;
    std::vector<DepthChange> depths;  // not empty
    LineCount belowZero;              // taken as 0
    LineCount jumps;                  // up or down by more than one
};

/** The compositor among the processes of a trace. The marks have to outlive it. */
class Compositor {
  public:
    explicit Compositor(const TraceMarks& marks);

    int32_t pid() const { return mPid; }
    /** The thread that composes. */
    int32_t tid() const { return mTid; }

    /** Layers whose queue depth changes, in the order of their first mention. */
    std::vector<QueuedLayer> layers() const;

    /** Sections of its thread that compose, else those that commit; maybe none at all. */
    std::vector<const Section*> compositions() const;

    /** Where a counter takes another value; its first value is one. */
    std::vector<CounterValue> changesOf(std::string_view name) const;

    /** Names of the vsync counters that tick with the display, best first. */
    std::vector<std::string> periodVsyncs() const;

  private:
    using Values = std::vector<CounterValue>;

    int32_t findProcess() const;
    int32_t findThread() const;
    bool crossesThreads(const Values& changes) const;

    const TraceMarks& mMarks;
    int32_t mPid;
    /** Changes of each track; empty for other processes. */
    std::vector<Values> mChanges;
    int32_t mTid;
};

}  // namespace brevold::trace
