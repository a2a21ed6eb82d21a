#include "sim/result_parts.h"

#include <fmt/format.h>
#include <fmt/ostream.h>

#include <cmath>

#include "base/time_units.h"
#include "report/labels.h"
#include "sim/recording_text.h"

namespace brevold::sim {

std::string describeGovernor(const Device& device) {
    const GovernorSpec& governor = device.governor;
    std::string text = wordOf(governor.kind, kGovernorWords);
    if (governor.kind == GovernorKind::Fixed) {
        text += fmt::format(" at {:.0f} % of the maximum frequency", governor.fixedShare * 100);
    }
    return text;
}

std::string cell(const Estimate& estimate, const MetricLabel& label) {
    if (std::isnan(estimate.mean)) return "-";
    std::string text = fmt::format("{:.{}f}", estimate.mean * label.factor, label.decimals);
    if (!std::isnan(estimate.deviation)) {
        text += fmt::format(" ± {:.{}f}", estimate.deviation * label.factor, label.decimals);
    }
    return text;
}

std::string cell(const Estimates& estimates, Metric metric) {
    return cell(at(estimates, metric), labelOf(metric));
}

const ClusterSpec& appCluster(const SetupResult& result) {
    return result.setup.device.clusters[result.setup.device.appCluster];
}

std::string heldText(const SetupResult& result, std::optional<size_t> held) {
    if (!held) return "none";
    return fmt::format("{:g} MHz", appCluster(result).points[result.held[*held].point].mhz);
}

void printWorkload(const std::vector<SetupResult>& results, const ExperimentOptions& options,
                   std::ostream& out) {
    const Setup& setup = results.front().setup;
    const Workload& workload = setup.workload;
    const double seconds = toSeconds(options.measuredNs);
    const std::string buffers =
            results.size() == 1 ? fmt::format(", {} buffers", setup.buffers()) : "";
    fmt::print(out, "device      {}\n", setup.device.name);
    if (workload.recording) {
        fmt::print(out, "workload    {}: {:.4g} Hz{}\n", workload.name, workload.refreshHz,
                   buffers);
        double fit = 1.0;
        for (const SetupResult& result : results)
            fit = std::fmin(fit, at(result.off, Metric::RecordedLatchShare).mean);
        printRecording(*workload.recording, fit, out);
        fmt::print(out, "runs        1 of {:.4g} s\n", seconds);
        return;
    }
    fmt::print(out, "workload    {}: {}, {:g} Hz{}\n", workload.name,
               wordOf(workload.pace, kPaceWords), workload.refreshHz, buffers);
    fmt::print(out, "runs        {} {} of {:g} s, mean ± standard deviation\n", options.seeds,
               options.seeds == 1 ? "seed" : "seeds", seconds);
}

std::string shortDescription(const Setup& setup) {
    return fmt::format("{}, {} buffers", wordOf(setup.device.governor.kind, kGovernorWords),
                       setup.buffers());
}

std::string shortDescription(const Reading& reading) {
    return fmt::format("DOWN {}, boost {}, depth {}", wordOf(reading.service.down, kDownWords),
                       wordOf(reading.service.boost, kBoostWords),
                       report::boostDepthWord(reading.boostDepth));
}

}  // namespace brevold::sim
