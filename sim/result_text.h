#pragma once

#include <ostream>
#include <string>

#include "sim/experiment.h"

namespace brevold::sim {

/** The assumptions of a result: "governor schedutil; DOWN read as ...; ..." */
std::string describeAssumptions(const Device& device, const Reading& reading);

/** Prints the result of one setup with one reading: a row per metric, a column per variant. */
void printResult(const SetupResult& result, const ExperimentOptions& options, std::ostream& out);

/** Prints the results of a sweep: a row per reading and variant. */
void printSweep(const std::vector<SetupResult>& results, const ExperimentOptions& options,
                std::ostream& out);

}  // namespace brevold::sim
