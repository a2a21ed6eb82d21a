#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "replay/play_options.h"
#include "replay/time_window.h"
#include "trace/read_timeline.h"

namespace brevold {

/** The command line of brevold-replay. An empty file name means no such file. */
struct Options {
    std::vector<std::string> traces;
    std::string profile;
    std::vector<std::string> settings;
    std::vector<std::string> vsSettings;
    std::string hints;
    std::string traceOut;
    std::string plot;
    bool json = false;
    bool layers = false;
    bool verify = false;
    double tolerancePercent = 1.0;
    replay::PlayOptions play;
    replay::WindowOptions window;
    trace::TimelineOptions timeline;
};

/** Registers the options; parsing then fills `options`. */
void addOptions(CLI::App& app, Options& options);

/** Throws std::runtime_error if the options do not fit together. */
void checkOptions(const Options& options);

/** Fills the device profile of this process. Throws host::ProfileError. */
void applyProfile(const Options& options);

}  // namespace brevold
