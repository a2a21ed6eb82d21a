#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "programs/common_options.h"
#include "sim/experiment.h"

namespace brevold {

/** The command line of brevold-sim. */
struct SimOptions {
    CommonOptions common;
    std::string device;
    std::vector<std::string> deviceSettings;
    /** One of these is set. */
    std::string workload;
    std::string trace;
    std::optional<std::string> layer;
    int32_t seeds = sim::ExperimentOptions().seeds;
    /** Simulated time of a run; without it 60, or the length of the trace. */
    std::optional<double> seconds;
    /** A word of sim::kSweepWords, or empty. */
    std::string sweep;
};

/** Registers the options; parsing then fills `options`. */
void addOptions(CLI::App& app, SimOptions& options);

/** Throws a std::exception if the options do not fit together. */
void checkOptions(const SimOptions& options);

/** Returns true if standard output is for the tables: no other output goes there. */
bool printsTables(const SimOptions& options);

}  // namespace brevold
