#include "sim/result_text.h"

#include <fmt/format.h>
#include <fmt/ostream.h>

#include <algorithm>
#include <cmath>

#include "report/labels.h"
#include "sim/result_parts.h"

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
            return "a cap at that share of the measured frame's mean frequency";
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

void printResult(const SetupResult& result, const ExperimentOptions& options, std::ostream& out) {
    const ReadingResult& reading = result.readings.front();
    printWorkload({result}, options, out);
    const ServiceSpec& service = reading.reading.service;
    const bool isFixed = result.setup.device.governor.kind == GovernorKind::Fixed;
    fmt::print(out, "governor    {}{}\n", describeGovernor(result.setup.device),
               isFixed ? " of the maximum frequency" : "");
    fmt::print(out, "DOWN        {}\n", describeDown(service.down));
    fmt::print(out, "UP          {}\n", describeUp(service.up));
    fmt::print(out, "jank boost  raises {}\n", describeBoost(service.boost));
    const BoostDepth depth = reading.reading.boostDepth;
    fmt::print(out, "boost depth {} ({})\n\n", report::boostDepthWord(depth),
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

}  // namespace brevold::sim
