#pragma once

#include <ostream>
#include <vector>

#include "report/summary.h"

namespace brevold::report {

/** Prints the summary of one trace. */
void print(const Summary& summary, std::ostream& out);

/** Prints a table of several traces, one row per replay. */
void printRows(const std::vector<TraceResult>& results, std::ostream& out);

}  // namespace brevold::report
