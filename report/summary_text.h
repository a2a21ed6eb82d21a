#pragma once

#include <ostream>

#include "report/summary.h"

namespace brevold::report {

enum class Legend : uint8_t { Hidden, Shown };

/** Prints a summary as text. A legend explains the terms of each block below it. */
void print(const Summary& summary, std::ostream& out, Legend legend = Legend::Hidden);

}  // namespace brevold::report
