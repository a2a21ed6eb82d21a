#pragma once

#include <ostream>
#include <vector>

#include "host/hint.h"
#include "replay/time_window.h"

namespace brevold::report {

/**
 * Writes the hints in a window as CSV with a header line. Times are seconds of the trace's own
 * clock. Scale, direction and boost level are empty for kinds that carry none.
 */
void writeHintsCsv(const std::vector<host::Hint>& hints, const replay::TimeWindow& window,
                   std::ostream& out);

}  // namespace brevold::report
