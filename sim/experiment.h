#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/metrics.h"
#include "sim/simulation.h"

namespace brevold::sim {

/** The service's reading of hints, and the queue depth that the compositor reports. */
struct Reading {
    ServiceSpec service;
    BoostDepth boostDepth = BoostDepth::Left;
};

/** A device and a workload, with the readings under which the library is tried. */
struct Setup {
    Device device;
    Workload workload;
    std::vector<Reading> readings;

    int32_t buffers() const { return device.buffers.value_or(workload.buffers); }
};

struct ExperimentOptions {
    int32_t seeds = 5;
    int64_t measuredNs = 60'000'000'000;
    size_t jobs = 1;
    /** Settings of a second variant, on top of the device profile; empty for none. */
    std::vector<std::string> vsSettings;
};

/** The first seconds of a run, which are not measured. */
constexpr int64_t kWarmUpNs = 3'000'000'000;

/** Mean and standard deviation over the seeds; not a number where the metric has no value. */
struct Estimate {
    double mean = kNotANumber;
    double deviation = kNotANumber;
};
using Estimates = std::array<Estimate, kMetricCount>;

constexpr const Estimate& at(const Estimates& estimates, Metric metric) {
    return estimates[static_cast<size_t>(metric)];
}

struct VariantResult {
    Estimates estimates;
    /** Index into SetupResult::held of the first that misses no more vsyncs and shows as many
     * frames. */
    std::optional<size_t> equalHeld;
};

struct ReadingResult {
    Reading reading;
    VariantResult given;
    std::optional<VariantResult> vs;
};

/** The application's cluster held at an operating point, without the library. */
struct HeldResult {
    size_t point;
    Estimates estimates;
};

struct SetupResult {
    Setup setup;
    Estimates off;
    /** By rising frequency. Of a table with many points, only some were tried. */
    std::vector<HeldResult> held;
    std::vector<ReadingResult> readings;
};

/** Throws InputError if a device and a workload do not go together. */
void checkSetup(const Setup& setup);

/**
 * Simulates all variants of all setups, each seed in a process of its own. The library's settings
 * are those of the device profile. Throws std::runtime_error.
 */
std::vector<SetupResult> runExperiment(const std::vector<Setup>& setups,
                                       const ExperimentOptions& options);

/** Seeds are numbered from here. */
constexpr uint64_t kFirstSeed = 1;

/** The scenario of one seed of a reading. */
Scenario scenarioOf(const Setup& setup, const Reading& reading, int64_t measuredNs, uint64_t seed);

/**
 * Loads the library into this process, with `settings` on top of the device profile. Without
 * settings there is no library. Throws std::runtime_error.
 */
std::optional<Library> loadLibrary(const std::optional<std::vector<std::string>>& settings);

/** Simulates in this process; see loadLibrary() for the settings. */
Metrics measure(const Scenario& scenario, const std::optional<std::vector<std::string>>& settings);

}  // namespace brevold::sim
