#pragma once

#include <string>
#include <vector>

#include "base/process_pool.h"

namespace brevold::sim {

/**
 * Runs simulations as runInProcesses() does. Returns the bytes of each. Throws std::runtime_error
 * if one of them failed.
 */
std::vector<std::string> runSimulations(const std::vector<Job>& jobs, size_t maxProcesses);

}  // namespace brevold::sim
