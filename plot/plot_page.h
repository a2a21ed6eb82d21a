#pragma once

#include <string>
#include <vector>

#include "plot/plot_data.h"
#include "plot/time_axis.h"

namespace brevold::plot {

/** The width of the panels, which is that of the time axis. */
constexpr int kPlotWidthPx = 1160;

/** A curve in gnuplot's notation. */
struct PlotCurve {
    /** Lines of numbers. The legend has an entry for the curve even if there are none. */
    std::string rows;
    /** The columns that the style needs, as "1:2". */
    std::string columns;
    /** As "points pt 7". */
    std::string style;
    /** The text in the legend; without it, the legend has no entry. */
    std::string title;
};

struct PlotPanel {
    std::string title;
    int heightPx;
    double minY;
    double maxY;
    bool isLogarithmic = false;
    /** Of the vertical axis; gnuplot chooses them if there are none. */
    std::vector<AxisTick> ticks = {};
    std::vector<PlotCurve> curves = {};
    /** A text in the middle of the panel. */
    std::string note = {};
};

/** A heading, and panels one below the other with a common time axis. */
struct PlotPage {
    /** The first line is the largest. */
    std::vector<std::string> heading;
    double beginS;
    double endS;
    /** Times that are grey in all panels. */
    PlotSpans shaded;
    std::vector<PlotPanel> panels;
    /** The time axis is since the start of this. */
    std::string timeOrigin = "trace";
};

/** Returns the script that draws a page. `terminal` is gnuplot's name and options of an output. */
std::string gnuplotScript(const PlotPage& page, const std::string& terminal);

}  // namespace brevold::plot
