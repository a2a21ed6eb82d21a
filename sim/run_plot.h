#pragma once

#include <string>
#include <vector>

#include "sim/run_curves.h"

namespace brevold::sim {

/** Width of a run's panels in pixels. */
constexpr size_t kRunPlotColumns = 1240;

/**
 * Draws one run as panels of a gnuplot multiplot, one above the other: frame time, queue depth,
 * frequency of each cluster, power, hints. `index` counts the runs on the page from the top, of
 * `count`; `title` names this one.
 */
std::string runPanels(const Scenario& scenario, const RunCurves& curves, size_t index, size_t count,
                      const std::string& title);

/** A whole page from the panels of its runs. */
std::string runPlotPage(const std::string& terminal, const std::string& heading,
                        const std::vector<std::string>& panels);

}  // namespace brevold::sim
