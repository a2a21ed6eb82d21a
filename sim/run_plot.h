#pragma once

#include <string>
#include <vector>

#include "sim/run_curves.h"

namespace brevold::sim {

/**
 * Makes the panels of one run: frame time, queue depth, frequency of each cluster, power, hints.
 * `name` begins each title. Returns bytes for runPlotPage().
 */
std::string runPanels(const Scenario& scenario, const RunCurves& curves, const std::string& name);

/** Returns the gnuplot script of a page with the panels of several runs, without the warm-up. */
std::string runPlotPage(const std::string& terminal, const std::vector<std::string>& heading,
                        int64_t measuredNs, const std::vector<std::string>& panels);

}  // namespace brevold::sim
