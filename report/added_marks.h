#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "replay/recording.h"
#include "trace/trace_form.h"

namespace brevold::report {

struct AddedThread {
    int32_t tid;
    std::string name;  // empty if unknown
};

struct AddedMark {
    enum class Kind : uint8_t { Begin, End, Counter };

    int64_t timeNs;
    Kind kind;
    size_t thread;     // index into AddedMarks::threads
    std::string name;  // Begin, Counter
    int64_t value;     // Counter
};

/**
 * The marks that a marked trace adds to the trace:
 *
 *   - the library's sections, on the thread that called it or on the library's workers
 *
 *   - for each channel of hints, a counter, and sections on a separate thread while a hint holds
 *
 * If the trace has marks of the library already, all sections are on new threads, and the names of
 * threads and counters end in " (replayed)".
 */
struct AddedMarks {
    /**
     * All threads of the compositor's process. The first is the one that composes; others of the
     * trace keep their ids. New threads have ids that the trace does not use.
     */
    std::vector<AddedThread> threads;
    /** In time order. */
    std::vector<AddedMark> marks;
};

/** A thread with sections that follow one another. */
struct AddedTrack {
    struct Section {
        int64_t beginNs;
        int64_t endNs;
        std::string name;
    };

    std::string name;
    std::vector<Section> sections;
};

/**
 * Returns the marks of a replay and of further tracks. `traceEndNs` ends the hints that hold at the
 * end of the trace.
 */
AddedMarks addedMarks(const replay::Recording& recording, const trace::TraceForm& form,
                      int64_t traceEndNs, const std::vector<AddedTrack>& tracks = {});

}  // namespace brevold::report
