#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "sim/experiment.h"
#include "sim/metric_labels.h"

/** Parts of the texts that printResult() and printSweep() print. */
namespace brevold::sim {

/** "schedutil" or "fixed 70 %" */
std::string describeGovernor(const Device& device);

/** "schedutil", "3 buffers", "DOWN cap", "UP governor", "boost compositor", "depth left" */
std::vector<std::string> describeAssumptions(const Setup& setup, const Reading& reading);
/** How many of them are the setup's; they come first. */
constexpr size_t kSetupAssumptions = 2;

/** "12.3 ± 0.4", or "-" without a value. */
std::string cell(const Estimate& estimate, const MetricLabel& label);
std::string cell(const Estimates& estimates, Metric metric);

const ClusterSpec& appCluster(const SetupResult& result);

/** The frequency of SetupResult::held[*held], or "none". */
std::string heldText(const SetupResult& result, std::optional<size_t> held);

/** Prints the device, the workload and the runs. The results have these in common. */
void printWorkload(const std::vector<SetupResult>& results, const ExperimentOptions& options,
                   std::ostream& out);

}  // namespace brevold::sim
