#pragma once

#include <cstdint>
#include <vector>

#include "trace/trace_form.h"
#include "trace/trace_mark.h"
#include "trace/trace_warning.h"

namespace brevold::trace {

/** Recorders merge the events of all processors, and may leave them out of order by this much. */
constexpr int64_t kMaxDisorderNs = 1'000'000;

/** Reads the marks of a trace in the order of time. One thread. */
class MarkReader {
  public:
    virtual ~MarkReader() = default;

    /**
     * Reads the next mark. Its name is valid until the next call. Returns false at the end of the
     * trace. Throws InputError if the trace cannot be used.
     */
    virtual bool next(TraceMark* mark) = 0;

    // The rest describes the part read so far, and the whole trace once next() returned false.

    /** Times of the first and the last event, of any kind. 0 if there are no events. */
    virtual int64_t startNs() const = 0;
    virtual int64_t endNs() const = 0;

    virtual std::vector<TraceWarning> warnings() const = 0;

    /** The notation of the marks and the threads. The compositor's ids are left 0. */
    virtual const TraceForm& form() const = 0;
};

}  // namespace brevold::trace
