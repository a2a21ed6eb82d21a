#include "sim/result_text.h"

#include <fmt/format.h>
#include <fmt/ostream.h>

#include <algorithm>
#include <cmath>

#include "report/labels.h"
#include "sim/metric_labels.h"

namespace brevold::sim {

namespace {

constexpr int kLabelWidth = 37;
constexpr int kColumnWidth = 18;

const char* describeDown(DownReading reading) {
    switch (reading) {
        case DownReading::Cap:
            return "a cap at that share of the maximum frequency";
        case DownReading::Governor:
            return "that share of the governor's choice";
        case DownReading::Frame:
            return "a cap at that share of the measured frame's speed";
    }
    return "";
}

const char* describeUp(UpReading reading) {
    return reading == UpReading::Governor ? "that multiple of the governor's choice" : "ignored";
}

const char* describeBoost(BoostTarget target) {
    switch (target) {
        case BoostTarget::Compositor:
            return "the compositor's cluster";
        case BoostTarget::All:
            return "both clusters";
        case BoostTarget::None:
            return "no cluster";
    }
    return "";
}

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

void printWorkload(const Setup& setup, const ExperimentOptions& options, std::ostream& out) {
    const Workload& workload = setup.workload;
    fmt::print(out, "device      {}\n", setup.device.name);
    fmt::print(out, "workload    {}: {}, {:g} Hz, {} buffers\n", workload.name,
               wordOf(workload.pace, kPaceWords), workload.refreshHz, setup.buffers());
    fmt::print(out, "runs        {} {} of {:g} s, mean ± standard deviation\n", options.seeds,
               options.seeds == 1 ? "seed" : "seeds",
               static_cast<double>(options.measuredNs) / 1e9);
}

/** The columns of a result, by title. */
using Column = std::pair<std::string, const Estimates*>;

std::vector<Column> columnsOf(const SetupResult& result) {
    const ReadingResult& reading = result.readings.front();
    std::vector<Column> columns = {{"library off", &result.off},
                                   {"as given", &reading.given.estimates}};
    std::vector<std::optional<size_t>> held = {reading.given.equalHeld};
    if (reading.vs) {
        columns.emplace_back("--vs", &reading.vs->estimates);
        if (reading.vs->equalHeld != held.front()) held.push_back(reading.vs->equalHeld);
    }
    for (const std::optional<size_t> index : held) {
        if (index) columns.emplace_back(heldText(result, index), &result.held[*index].estimates);
    }
    return columns;
}

}  // namespace

std::string shortDescription(const Setup& setup) {
    return fmt::format("{}, {} buffers", wordOf(setup.device.governor.kind, kGovernorWords),
                       setup.buffers());
}

std::string shortDescription(const Reading& reading) {
    return fmt::format("DOWN {}, boost {}, depth {}", wordOf(reading.service.down, kDownWords),
                       wordOf(reading.service.boost, kBoostWords),
                       wordOf(reading.boostDepth, kBoostDepthWords));
}

void printResult(const SetupResult& result, const ExperimentOptions& options, std::ostream& out) {
    const ReadingResult& reading = result.readings.front();
    printWorkload(result.setup, options, out);
    const ServiceSpec& service = reading.reading.service;
    fmt::print(out, "governor    {}\n", describeGovernor(result.setup.device));
    fmt::print(out, "DOWN        {}\n", describeDown(service.down));
    fmt::print(out, "UP          {}\n", describeUp(service.up));
    fmt::print(out, "jank boost  raises {}\n", describeBoost(service.boost));
    const BoostDepth depth = reading.reading.boostDepth;
    fmt::print(out, "boost depth {} ({})\n\n", wordOf(depth, kBoostDepthWords),
               report::boostDepthText(depth));
    const std::vector<Column> columns = columnsOf(result);
    fmt::print(out, "{:{}}", "", kLabelWidth);
    for (const auto& [title, estimates] : columns)
        fmt::print(out, "{:>{}}", title, kColumnWidth);
    out << '\n';
    for (const MetricLabel& label : kMetricLabels) {
        const bool isMode = label.metric >= Metric::Mode0Share;
        const bool isShown = std::any_of(columns.begin(), columns.end(), [&](const Column& c) {
            const double mean = at(*c.second, label.metric).mean;
            return isMode ? mean > 0.0 : !std::isnan(mean);
        });
        if (!isShown) continue;
        fmt::print(out, "{:{}}", label.label, kLabelWidth);
        for (const auto& [title, estimates] : columns)
            fmt::print(out, "{:>{}}", cell(*estimates, label.metric), kColumnWidth);
        out << '\n';
    }
    fmt::print(
            out,
            "\nThe lowest operating points of cluster {} that, held without the library, miss no "
            "more vsyncs and\nshow as many frames (within 0.5 %):\n",
            appCluster(result).name);
    fmt::print(out, "  as \"as given\": {}\n", heldText(result, reading.given.equalHeld));
    if (reading.vs) fmt::print(out, "  as \"--vs\": {}\n", heldText(result, reading.vs->equalHeld));
}

void printSweep(const std::vector<SetupResult>& results, const ExperimentOptions& options,
                std::ostream& out) {
    constexpr std::pair<Metric, const char*> kColumns[] = {
            {Metric::EnergyRatio, "energy"},         {Metric::MissedPerMinute, "missed a min"},
            {Metric::FramesPerSecond, "frames a s"}, {Metric::ShowLatencyMs, "latency, ms"},
            {Metric::BoostShare, "boosted, %"},
    };
    constexpr int kWidth = 15;
    const SetupResult& first = results.front();
    printWorkload(first.setup, options, out);
    fmt::print(out,
               "energy      of both clusters, as a share of library off with the same governor and "
               "buffers\n"
               "latency     from the start of a frame to its display\n"
               "held        lowest operating point of cluster {} that, held without the library, "
               "misses no more vsyncs\n"
               "            and shows as many frames (within 0.5 %), and its energy\n\n",
               appCluster(first).name);
    fmt::print(out, "{:12}{:8}{:10}{:12}{:6}{:12}", "governor", "buffers", "DOWN", "boost", "depth",
               "variant");
    for (const auto& [metric, title] : kColumns)
        fmt::print(out, "{:>{}}", title, kWidth);
    fmt::print(out, "{:>12}{:>{}}\n", "held", "its energy", kWidth);
    for (const SetupResult& result : results) {
        const Setup& setup = result.setup;
        const auto printRow = [&](const Reading* reading, const char* name,
                                  const Estimates& estimates, std::optional<size_t> held) {
            fmt::print(out, "{:12}{:<8}{:10}{:12}{:6}{:12}",
                       wordOf(setup.device.governor.kind, kGovernorWords), setup.buffers(),
                       reading ? wordOf(reading->service.down, kDownWords) : "-",
                       reading ? wordOf(reading->service.boost, kBoostWords) : "-",
                       reading ? wordOf(reading->boostDepth, kBoostDepthWords) : "-", name);
            for (const auto& [metric, title] : kColumns)
                fmt::print(out, "{:>{}}", cell(estimates, metric), kWidth);
            fmt::print(out, "{:>12}{:>{}}\n", reading ? heldText(result, held) : "-",
                       held ? cell(result.held[*held].estimates, Metric::EnergyRatio) : "-",
                       kWidth);
        };
        printRow(nullptr, "library off", result.off, {});
        for (const ReadingResult& reading : result.readings) {
            const auto printVariant = [&](const char* name, const VariantResult& variant) {
                printRow(&reading.reading, name, variant.estimates, variant.equalHeld);
            };
            printVariant("as given", reading.given);
            if (reading.vs) printVariant("--vs", *reading.vs);
        }
    }
}

}  // namespace brevold::sim
