#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "trace/trace_marks.h"
#include "trace/trace_warning.h"

namespace brevold::trace {

/** The compositor's process and thread. The marks have to outlive it. */
class Compositor {
  public:
    using Changes = std::vector<CounterChange>;

    /**
     * Chooses the process with the most marks that only a compositor has. Throws InputError, with a
     * message that begins with `path`, if no process has any.
     */
    Compositor(const TraceMarks& marks, const std::string& path);

    int32_t pid() const { return mPid; }
    /** The thread that composes. */
    int32_t tid() const { return mTid; }

    const std::deque<CounterTrack>& tracks() const { return mMarks.tracks(); }
    /** The changes of a track's value, including its first value. None for other processes. */
    const Changes& changesOf(const CounterTrack& track) const;
    /** The changes of the counter with this name. None if there is no such counter. */
    const Changes& changesOf(std::string_view name) const;

    /** The sections of its thread that compose, else those that commit. May be empty. */
    std::vector<const Section*> compositions() const;

    /** Set if another process has about as many marks of a compositor. */
    const std::optional<TraceWarning>& rivalWarning() const { return mRivalWarning; }

  private:
    void findProcess(const std::string& path);
    int32_t findThread() const;

    const TraceMarks& mMarks;
    int32_t mPid = 0;
    int32_t mTid = 0;
    std::optional<TraceWarning> mRivalWarning;
};

}  // namespace brevold::trace
