#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "programs/common_options.h"
#include "replay/time_window.h"
#include "report/legend.h"
#include "trace/read_timeline.h"

namespace brevold {

/** The command line of brevold-replay. */
struct ReplayOptions {
    CommonOptions common;
    std::vector<std::string> traces;
    /** Like `common.plot`, a file, or a folder for one file per trace; see outputFiles(). */
    std::string hints;
    bool layers = false;
    bool verify = false;
    double tolerancePercent = 1.0;
    report::Legend legend = report::Legend::Hidden;
    replay::WindowOptions window;
    trace::TimelineOptions timeline;
};

/** The output files of one trace. An empty name means no such file. */
struct OutputFiles {
    std::string hints;
    std::string plot;
    std::string traceOut;
};

/** Registers the options; parsing then fills `options`. */
void addOptions(CLI::App& app, ReplayOptions& options);

/** Throws a std::exception if the options do not fit together. */
void checkOptions(const ReplayOptions& options);

/** Returns true if the value of --hints or --plot names a folder: it ends in "/". */
bool namesFolder(const std::string& name);

/**
 * Returns the output files of each trace. In a folder, a file is named by the position and the name
 * of its trace, such as "01-game.csv".
 */
std::vector<OutputFiles> outputFiles(const ReplayOptions& options);

/** Returns true if standard output is for the summary: no other output goes there. */
bool printsSummary(const ReplayOptions& options);

}  // namespace brevold
