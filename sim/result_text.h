#pragma once

#include <ostream>
#include <string>

#include "sim/experiment.h"

namespace brevold::sim {

/** "schedutil, 3 buffers" */
std::string shortDescription(const Setup& setup);

/** "DOWN cap, boost compositor, depth left" */
std::string shortDescription(const Reading& reading);

/** Prints the result of one setup with one reading: a row per metric, a column per variant. */
void printResult(const SetupResult& result, const ExperimentOptions& options, std::ostream& out);

/** Prints the results of a sweep: a row per reading and variant. */
void printSweep(const std::vector<SetupResult>& results, const ExperimentOptions& options,
                std::ostream& out);

}  // namespace brevold::sim
