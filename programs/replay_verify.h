#pragma once

#include <ostream>

#include "programs/replay_options.h"

namespace brevold {

/**
 * Compares a recorded trace with its replay and prints the result. Returns true if the verdict is
 * good. Throws std::runtime_error if the trace cannot be read or replayed.
 */
bool verifyTrace(const ReplayOptions& options, std::ostream& out);

}  // namespace brevold
