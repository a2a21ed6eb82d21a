#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "trace/trace_marks.h"

namespace brevold::trace {

/** The compositor's process and thread. The marks have to outlive it. */
class Compositor {
  public:
    using Values = std::vector<CounterValue>;

    /** Chooses the process with the most marks that only a compositor has. */
    explicit Compositor(const TraceMarks& marks);

    int32_t pid() const { return mPid; }
    /** The thread that composes. */
    int32_t tid() const { return mTid; }

    const std::deque<CounterTrack>& tracks() const { return mMarks.tracks(); }
    /** The changes of a track's value, including its first value. None for other processes. */
    const Values& changesOf(size_t track) const { return mChanges[track]; }
    /** The changes of the counter with this name. None if there is no such counter. */
    const Values& changesOf(std::string_view name) const;

    /** The sections of its thread that compose, else those that commit. May be empty. */
    std::vector<const Section*> compositions() const;

  private:
    int32_t findProcess() const;
    int32_t findThread() const;

    const TraceMarks& mMarks;
    int32_t mPid;
    std::vector<Values> mChanges;  // of each track
    int32_t mTid;
};

}  // namespace brevold::trace
