#pragma once

#include <ostream>

#include "report/legend.h"
#include "report/summary.h"

namespace brevold::report {

/** Prints a summary as text. */
void print(const Summary& summary, std::ostream& out, Legend legend);

}  // namespace brevold::report
