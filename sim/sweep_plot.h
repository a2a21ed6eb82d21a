#pragma once

#include <string>
#include <vector>

#include "sim/experiment.h"

namespace brevold::sim {

/**
 * The results of a sweep as a gnuplot script: energy against missed vsyncs, a point with error bars
 * per variant and reading, and a line through the operating points at which the application's
 * cluster was held. A variant below the line saves energy that no fixed frequency would.
 */
std::string sweepPlotPage(const std::string& terminal, const std::vector<SetupResult>& results);

}  // namespace brevold::sim
