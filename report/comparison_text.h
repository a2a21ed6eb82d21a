#pragma once

#include <cstdint>
#include <ostream>
#include <vector>

#include "replay/divergence.h"
#include "report/summary.h"

namespace brevold::report {

/** Prints the figures of two replays of one trace, their difference, and the divergences. */
void printComparison(const Summary& first, const Summary& second,
                     const std::vector<replay::Divergence>& divergences, int64_t traceStartNs,
                     std::ostream& out);

}  // namespace brevold::report
