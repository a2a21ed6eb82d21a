#pragma once

#include <ostream>

#include "replay/recording.h"
#include "replay/time_window.h"
#include "trace/timeline.h"

namespace brevold::report {

/**
 * Writes the hints in a window as CSV with a header line. The first column has seconds since the
 * trace's first event, the second the trace's own time. The layer is the one in focus. Scale,
 * direction and boost level are empty for kinds that carry none.
 */
void writeHintsCsv(const trace::Timeline& timeline, const replay::Recording& recording,
                   const replay::TimeWindow& window, std::ostream& out);

}  // namespace brevold::report
