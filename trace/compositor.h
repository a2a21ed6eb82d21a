#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "trace/trace_marks.h"
#include "trace/trace_warning.h"

namespace brevold::trace {

/** The compositor's process and thread, and their marks. */
class Compositor {
  public:
    /**
     * Chooses the process with the most marks that only a compositor has. Throws InputError, with a
     * message that begins with `path`, if no process has any.
     */
    Compositor(TraceMarks marks, const std::string& path);

    int32_t pid() const { return mPid; }
    /** The thread that composes. */
    int32_t tid() const { return mTid; }

    /** The counters of its process. Their changes may be moved out. */
    const std::deque<CounterTrack>& tracks() const { return mTracks; }
    std::deque<CounterTrack>& tracks() { return mTracks; }
    /** Moves the sections of its thread out that compose, else those that commit. */
    std::deque<Section> takeCompositions();

    /** Set if another process has about as many marks of a compositor. */
    const std::optional<TraceWarning>& rivalWarning() const { return mRivalWarning; }

  private:
    void findProcess(const TraceMarks& marks, const std::string& path);
    int32_t findThread() const;

    int32_t mPid = 0;
    int32_t mTid = 0;
    std::deque<CounterTrack> mTracks;
    std::deque<Section> mSections;
    std::optional<TraceWarning> mRivalWarning;
};

}  // namespace brevold::trace
