#pragma once

#include <ostream>
#include <vector>

#include "host/hint.h"

namespace brevold::replay {

/**
 * Writes hints as CSV with a header line. Times are seconds of the trace's own clock. Scale,
 * direction and boost level are empty for kinds that carry none.
 */
void writeHintsCsv(const std::vector<host::Hint>& hints, std::ostream& out);

}  // namespace brevold::replay
