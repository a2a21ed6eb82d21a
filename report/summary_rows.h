#pragma once

#include <ostream>
#include <vector>

#include "report/summary.h"

namespace brevold::report {

/** Prints one row for each replay, with a heading, and the warnings of all traces. */
void printRows(const std::vector<TraceResult>& results, std::ostream& out);

}  // namespace brevold::report
