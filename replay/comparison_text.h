#pragma once

#include <cstdint>
#include <ostream>
#include <vector>

#include "replay/divergence.h"
#include "replay/summary.h"

namespace brevold::replay {

/** Prints the figures of two replays of one trace, their difference, and the divergences. */
void printComparison(const Summary& first, const Summary& second,
                     const std::vector<Divergence>& divergences, int64_t traceStartNs,
                     std::ostream& out);

}  // namespace brevold::replay
