#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "replay/play_options.h"

namespace brevold {

/** The options that all programs have. An empty file name means no such file. */
struct CommonOptions {
    std::string profile;
    std::vector<std::string> settings;
    std::vector<std::string> vsSettings;
    replay::BoostDepth boostDepth = replay::BoostDepth::Left;
    std::string traceOut;
    std::string plot;
    bool json = false;
    /** Processes at a time, at least 1. */
    size_t jobs = 1;
};

// The groups of options in the help.
constexpr char kTraceGroup[] = "Trace";
constexpr char kDeviceGroup[] = "Device";
constexpr char kOutputGroup[] = "Output";

/** Registers the options; parsing then fills `options`. */
void addCommonOptions(CLI::App& app, CommonOptions& options);

/** Registers an option that takes one KEY=VALUE each time that it is given. */
CLI::Option* addEntries(CLI::App& app, const std::string& name, std::vector<std::string>& entries,
                        const std::string& description);

/** Registers --layer, which names a layer of a trace. */
CLI::Option* addLayer(CLI::App& app, std::optional<std::string>& layer);

/** Accepts a text that is not empty. */
CLI::Validator notEmpty();

/** Accepts a number from `min` to `max`. */
CLI::Validator numberFrom(double min, double max);

/**
 * Fills the device profile of this process, and checks the entries of --vs. Throws
 * host::ProfileError, which names the option.
 */
void applyProfile(const CommonOptions& options);

}  // namespace brevold
