#pragma once

#include <ostream>
#include <vector>

#include "report/legend.h"
#include "report/summary.h"

namespace brevold::report {

/** Prints one row for each replay, with a heading, and the warnings of all traces. */
void printRows(const std::vector<TraceResult>& results, std::ostream& out, Legend legend);

}  // namespace brevold::report
