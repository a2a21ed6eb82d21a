#pragma once

#include <ostream>
#include <vector>

#include "report/summary.h"

namespace brevold::report {

/**
 * Writes one JSON object: "version", which changes with the name or meaning of any field, and
 * "replays", an object for each trace. Times are seconds since the start of the trace.
 */
void printJson(const std::vector<TraceResult>& results, std::ostream& out);

}  // namespace brevold::report
