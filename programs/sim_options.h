#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "sim/experiment.h"

namespace brevold {

/** The command line of brevold-sim. An empty file name means no such file. */
struct SimOptions {
    std::string device;
    std::vector<std::string> deviceSettings;
    std::string profile;
    std::vector<std::string> settings;
    std::string workload;
    std::string boostDepth = "left";
    std::string sweep;
    double seconds = 60.0;
    bool json = false;
    std::string plot;
    std::string traceOut;
    sim::ExperimentOptions experiment;
};

void addOptions(CLI::App& app, SimOptions& options);

/** Fills the device profile from --profile and --set. Throws ProfileError. */
void applyProfile(const SimOptions& options);

}  // namespace brevold
