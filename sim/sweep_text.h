#pragma once

#include <ostream>
#include <vector>

#include "sim/experiment.h"

namespace brevold::sim {

/** Prints the results of a sweep: a row per setup, reading and variant. */
void printSweep(const std::vector<SetupResult>& results, const ExperimentOptions& options,
                std::ostream& out);

}  // namespace brevold::sim
