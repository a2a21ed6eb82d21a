#include "sim/result_json.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "base/time_units.h"
#include "report/labels.h"
#include "sim/metric_labels.h"

namespace brevold::sim {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormatVersion = 1;

Json numberOf(double value) {
    return std::isnan(value) ? Json() : Json(value);
}

Json objectOf(const Estimates& estimates) {
    Json object = Json::object();
    for (const MetricLabel& label : kMetricLabels) {
        const Estimate& estimate = at(estimates, label.metric);
        object[label.key] = nullptr;
        if (std::isnan(estimate.mean)) continue;
        object[label.key] = {{"mean", estimate.mean}, {"sd", numberOf(estimate.deviation)}};
    }
    return object;
}

double mhzOf(const SetupResult& result, const HeldResult& held) {
    const Device& device = result.setup.device;
    return device.clusters[device.appCluster].points[held.point].mhz;
}

Json objectOf(const SetupResult& result, const VariantResult& variant) {
    Json object = objectOf(variant.estimates);
    object["held_mhz_of_no_more_misses"] =
            variant.equalHeld ? Json(mhzOf(result, result.held[*variant.equalHeld])) : Json();
    return object;
}

Json objectOf(const RecordedWork& recording) {
    Json threads = Json::array();
    for (const RecordedWork::Thread& thread : recording.threads)
        threads.push_back({{"tid", thread.tid}, {"name", thread.name}});
    return {{"layer", recording.layer},
            {"frames", recording.frames.size()},
            {"length_s", toSeconds(recording.lengthNs)},
            {"work", wordOf(recording.method, kWorkMethodWords)},
            {"threads", std::move(threads)},
            {"assumed_speed", recording.assumedSpeed ? Json(*recording.assumedSpeed) : Json()},
            {"unmeasured_frames", recording.unmeasuredFrames}};
}

Json objectOf(const SetupResult& result) {
    const Device& device = result.setup.device;
    Json object;
    object["device"] = device.name;
    object["workload"] = result.setup.workload.name;
    if (result.setup.workload.recording)
        object["recording"] = objectOf(*result.setup.workload.recording);
    object["refresh_hz"] = result.setup.workload.refreshHz;
    object["buffers"] = result.setup.buffers();
    object["governor"] = wordOf(device.governor.kind, kGovernorWords);
    object["off"] = objectOf(result.off);
    object["held"] = Json::array();
    for (const HeldResult& held : result.held) {
        Json point = objectOf(held.estimates);
        point["mhz"] = mhzOf(result, held);
        object["held"].push_back(std::move(point));
    }
    object["readings"] = Json::array();
    for (const ReadingResult& reading : result.readings) {
        const ServiceSpec& service = reading.reading.service;
        Json added = {{"down", wordOf(service.down, kDownWords)},
                      {"up", wordOf(service.up, kUpWords)},
                      {"boost", wordOf(service.boost, kBoostWords)},
                      {"boost_depth", report::boostDepthWord(reading.reading.boostDepth)},
                      {"given", objectOf(result, reading.given)}};
        if (reading.vs) added["vs"] = objectOf(result, *reading.vs);
        object["readings"].push_back(std::move(added));
    }
    return object;
}

}  // namespace

void printJson(const std::vector<SetupResult>& results, const ExperimentOptions& options,
               std::ostream& out) {
    Json root;
    root["version"] = kFormatVersion;
    root["seeds"] = options.seeds;
    root["measured_s"] = toSeconds(options.measuredNs);
    root["vs_settings"] = options.vsSettings;
    root["setups"] = Json::array();
    for (const SetupResult& result : results)
        root["setups"].push_back(objectOf(result));
    // Names of files are bytes of any kind.
    out << root.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace brevold::sim
