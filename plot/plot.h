#pragma once

#include <ostream>
#include <string>

#include "replay/recording.h"
#include "replay/time_window.h"
#include "trace/timeline.h"

namespace brevold::plot {

/** Returns gnuplot's terminal for a ".svg" or ".png" file. Throws OutputError for other names. */
std::string plotTerminal(const std::string& path);

/** Draws a window of a replay on one page. Throws std::runtime_error if gnuplot is missing or
 * fails. */
void drawPlot(const std::string& trace, const trace::Timeline& timeline,
              const replay::Recording& recording, const replay::TimeWindow& window,
              const std::string& terminal, std::ostream& out);

}  // namespace brevold::plot
