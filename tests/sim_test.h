#pragma once

#include <fmt/format.h>

#include <cstring>
#include <string>
#include <vector>

#include "sim/experiment.h"
#include "sim/simulation_jobs.h"

namespace brevold::sim {

/** Settings of the library with energy scaling and DOWN on. */
inline const std::vector<std::string> kScalingOn = {"feature.5=1", "vendor.perf.pfar.enable=1",
                                                    "vendor.perf.pfar.down.enable=1",
                                                    "app-type.*=2"};

/** A device whose application cluster has one point each MHz up to 4 GHz, at 0.25 mW per MHz. */
inline std::string fineDevice() {
    std::string text =
            "cluster.little.opp=1000 MHz 100 mW\n"
            "app.cluster=big\ncompositor.cluster=little\ngovernor=performance\n";
    for (int mhz = 1; mhz <= 4000; ++mhz)
        text += fmt::format("cluster.big.opp={} MHz {} mW\n", mhz, mhz * 0.25);
    return text;
}

inline Scenario makeScenario(const std::string& device, const std::string& workload,
                             int64_t measuredNs) {
    const Setup setup = {
            parseDevice(device, "device", {}), parseWorkload(workload, "workload"), {}};
    checkSetup(setup);
    return scenarioOf(setup, {setup.device.service, BoostDepth::Left}, measuredNs, 1);
}

/** Measures each scenario with the library in a process of its own. */
inline std::vector<Metrics> measureAll(const std::vector<Scenario>& scenarios,
                                       const std::vector<std::string>& settings) {
    std::vector<Job> jobs;
    for (const Scenario& scenario : scenarios) {
        jobs.push_back([&] {
            const Metrics metrics = measure(scenario, settings);
            return std::string(reinterpret_cast<const char*>(metrics.data()), sizeof(metrics));
        });
    }
    std::vector<Metrics> results;
    for (const std::string& bytes : runSimulations(jobs, 2))
        memcpy(results.emplace_back().data(), bytes.data(), sizeof(Metrics));
    return results;
}

}  // namespace brevold::sim
