#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "plot/lane_panels.h"
#include "replay/recording.h"
#include "replay/time_window.h"
#include "trace/timeline.h"

namespace brevold::plot {

/** Returns gnuplot's terminal for a ".svg" or ".png" file. Throws OutputError for other names. */
std::string plotTerminal(const std::string& path);

/** The content of a picture. References must stay valid while it is drawn. */
struct Plot {
    std::string trace;
    const trace::Timeline& timeline;
    const replay::Recording& recording;
    replay::TimeWindow window;
    /** A replay to compare, or null, and its settings. */
    const replay::Recording* second = nullptr;
    std::vector<std::string> secondSettings = {};
    std::vector<PlotMark> marks = {};
};

/** Draws a picture on one page. Throws std::runtime_error if gnuplot is missing or fails. */
void drawPlot(const Plot& plot, const std::string& terminal, std::ostream& out);

}  // namespace brevold::plot
