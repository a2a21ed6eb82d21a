#include "sim/experiment.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/time_units.h"
#include "host/device_profile.h"
#include "sim/simulation_jobs.h"

namespace brevold::sim {

namespace {

double ratioOf(double value, double reference) {
    return reference > 0.0 ? value / reference : kNotANumber;
}

void relateToOff(const std::vector<Metrics>& off, std::vector<Metrics>& runs) {
    for (size_t seed = 0; seed < runs.size(); ++seed) {
        const auto ratio = [&](Metric power) {
            return ratioOf(at(runs[seed], power), at(off[seed], power));
        };
        at(runs[seed], Metric::EnergyRatio) = ratio(Metric::TotalPowerMw);
        at(runs[seed], Metric::AppEnergyRatio) = ratio(Metric::AppPowerMw);
    }
}

Estimate estimate(const std::vector<Metrics>& runs, size_t metric) {
    double sum = 0.0;
    double count = 0.0;
    for (const Metrics& run : runs) {
        if (std::isnan(run[metric])) continue;
        sum += run[metric];
        ++count;
    }
    if (count == 0.0) return {};
    const double mean = sum / count;
    double squares = 0.0;
    for (const Metrics& run : runs) {
        if (!std::isnan(run[metric])) squares += (run[metric] - mean) * (run[metric] - mean);
    }
    return {mean, count > 1.0 ? std::sqrt(squares / (count - 1.0)) : kNotANumber};
}

Estimates estimateAll(const std::vector<Metrics>& runs) {
    Estimates estimates;
    for (size_t metric = 0; metric < kMetricCount; ++metric)
        estimates[metric] = estimate(runs, metric);
    return estimates;
}

std::optional<size_t> equalHeld(const std::vector<HeldResult>& held, const Estimates& variant) {
    // An application that settles at half the rate misses no vsync by the rule.
    constexpr double kAsMany = 0.995;
    for (size_t i = 0; i < held.size(); ++i) {
        const Estimates& estimates = held[i].estimates;
        if (at(estimates, Metric::MissedPerMinute).mean <=
                    at(variant, Metric::MissedPerMinute).mean &&
            at(estimates, Metric::FramesPerSecond).mean >=
                    kAsMany * at(variant, Metric::FramesPerSecond).mean) {
            return i;
        }
    }
    return {};
}

/** The operating points at which the application's cluster is held: all, or evenly spread ones. */
std::vector<size_t> heldPoints(const Device& device) {
    constexpr size_t kMaxHeldPoints = 32;
    const size_t last = device.clusters[device.appCluster].points.size() - 1;
    const size_t count = std::min(last, kMaxHeldPoints - 1);
    std::vector<size_t> points = {0};
    for (size_t i = 1; i <= count; ++i)
        points.push_back(last * i / count);
    return points;
}

/** Collects the runs of an experiment and returns their results in the same order. */
class Runs {
  public:
    explicit Runs(const ExperimentOptions& options) : mOptions(options) {}

    /** Adds a run of each seed. Without settings there is no library. */
    void add(const Setup& setup, const Reading& reading, std::optional<size_t> heldPoint,
             const std::optional<std::vector<std::string>>& settings) {
        for (int32_t i = 0; i < mOptions.seeds; ++i) {
            Scenario scenario = scenarioOf(setup, reading, mOptions.measuredNs,
                                           kFirstSeed + static_cast<uint64_t>(i));
            scenario.heldPoint = heldPoint;
            mJobs.push_back([scenario = std::move(scenario), settings] {
                const Metrics metrics = measure(scenario, settings);
                return std::string(reinterpret_cast<const char*>(metrics.data()), sizeof(metrics));
            });
        }
    }

    void run() { mResults = runSimulations(mJobs, mOptions.jobs); }

    std::vector<Metrics> take() {
        std::vector<Metrics> runs(static_cast<size_t>(mOptions.seeds));
        for (Metrics& metrics : runs)
            memcpy(metrics.data(), mResults[mNextResult++].data(), sizeof(metrics));
        return runs;
    }

  private:
    const ExperimentOptions& mOptions;
    std::vector<Job> mJobs;
    std::vector<std::string> mResults;
    size_t mNextResult = 0;
};

void addRuns(const Setup& setup, const ExperimentOptions& options, Runs& runs) {
    runs.add(setup, {}, {}, {});
    for (const size_t point : heldPoints(setup.device))
        runs.add(setup, {}, point, {});
    for (const Reading& reading : setup.readings) {
        runs.add(setup, reading, {}, std::vector<std::string>());
        if (!options.vsSettings.empty()) runs.add(setup, reading, {}, options.vsSettings);
    }
}

SetupResult takeResult(const Setup& setup, const ExperimentOptions& options, Runs& runs) {
    std::vector<Metrics> off = runs.take();
    const auto takeEstimates = [&] {
        std::vector<Metrics> variant = runs.take();
        relateToOff(off, variant);
        return estimateAll(variant);
    };
    SetupResult result;
    result.setup = setup;
    relateToOff(off, off);
    result.off = estimateAll(off);
    for (const size_t point : heldPoints(setup.device))
        result.held.push_back({point, takeEstimates()});
    const auto takeVariant = [&] {
        VariantResult variant = {takeEstimates(), {}};
        variant.equalHeld = equalHeld(result.held, variant.estimates);
        return variant;
    };
    for (const Reading& reading : setup.readings) {
        ReadingResult& added = result.readings.emplace_back();
        added.reading = reading;
        added.given = takeVariant();
        if (!options.vsSettings.empty()) added.vs = takeVariant();
    }
    return result;
}

}  // namespace

void checkSetup(const Setup& setup) {
    if (setup.device.latchNs >= setup.workload.periodNs()) {
        throw InputError(fmt::format(
                "display.latch-ms={} of {} is not below the refresh period of {}, {:.3f} ms",
                toMs(setup.device.latchNs), setup.device.name, setup.workload.name,
                toMs(setup.workload.periodNs())));
    }
}

std::vector<SetupResult> runExperiment(const std::vector<Setup>& setups,
                                       const ExperimentOptions& options) {
    Runs runs(options);
    for (const Setup& setup : setups)
        addRuns(setup, options, runs);
    runs.run();
    std::vector<SetupResult> results;
    for (const Setup& setup : setups)
        results.push_back(takeResult(setup, options, runs));
    return results;
}

Scenario scenarioOf(const Setup& setup, const Reading& reading, int64_t measuredNs, uint64_t seed) {
    Scenario scenario = {setup.device, setup.workload, reading.boostDepth, {},
                         seed,         kWarmUpNs,      measuredNs};
    scenario.device.service = reading.service;
    return scenario;
}

std::optional<Library> loadLibrary(const std::optional<std::vector<std::string>>& settings) {
    if (!settings) return {};
    for (const std::string& setting : *settings)
        host::setProfileEntry(setting);
    return std::optional<Library>(std::in_place, kStartNs);
}

Metrics measure(const Scenario& scenario, const std::optional<std::vector<std::string>>& settings) {
    std::optional<Library> library = loadLibrary(settings);
    MetricsObserver observer(scenario.workload.periodNs());
    Simulation simulation(scenario, library ? &*library : nullptr, observer);
    simulation.run();
    Metrics metrics = observer.metrics();
    const Device& device = scenario.device;
    const double seconds = toSeconds(scenario.measuredNs);
    const double appMw = simulation.energyMj(device.appCluster) / seconds;
    at(metrics, Metric::AppPowerMw) = at(metrics, Metric::TotalPowerMw) = appMw;
    if (device.compositorCluster != device.appCluster) {
        const double compositorMw = simulation.energyMj(device.compositorCluster) / seconds;
        at(metrics, Metric::CompositorPowerMw) = compositorMw;
        at(metrics, Metric::TotalPowerMw) += compositorMw;
    }
    if (observer.framesShown() > 0) {
        at(metrics, Metric::FrameEnergyMj) = at(metrics, Metric::TotalPowerMw) * seconds /
                                             static_cast<double>(observer.framesShown());
    }
    return metrics;
}

}  // namespace brevold::sim
