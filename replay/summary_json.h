#pragma once

#include <ostream>
#include <vector>

#include "replay/summary.h"

namespace brevold::replay {

/**
 * Writes one JSON object: "version", which changes when a name or a meaning does, and "replays",
 * one object a trace. Times are seconds from the start of the trace.
 */
void printJson(const std::vector<TraceResult>& results, std::ostream& out);

}  // namespace brevold::replay
