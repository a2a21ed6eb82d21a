#pragma once

#include <ostream>
#include <vector>

#include "sim/experiment.h"

namespace brevold::sim {

/**
 * Prints the results as one JSON object: version, runs, and per setup its assumptions and its
 * variants. Each metric is {"mean", "sd"} under the key in metric_labels.h; null where a metric has
 * no value.
 */
void printJson(const std::vector<SetupResult>& results, const ExperimentOptions& options,
               std::ostream& out);

}  // namespace brevold::sim
