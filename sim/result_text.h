#pragma once

#include <ostream>

#include "sim/experiment.h"

namespace brevold::sim {

/** Prints the result of one setup with one reading: a row per metric, a column per variant. */
void printResult(const SetupResult& result, const ExperimentOptions& options, std::ostream& out);

}  // namespace brevold::sim
