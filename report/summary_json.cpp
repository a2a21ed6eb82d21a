#include "report/summary_json.h"

#include <nlohmann/json.hpp>

#include "base/text.h"
#include "report/labels.h"

namespace brevold::report {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormatVersion = 2;

Json requestsOf(const Summary& summary) {
    Json requests = Json::object();
    for (const host::HintKind kind : host::kHintKinds) {
        const RequestSummary& request = summary.of(kind);
        Json& object = requests[host::nameOf(kind)];
        object["count"] = request.count;
        if (!host::hasScale(kind) || request.count == 0) continue;
        object["scale_min"] = request.minScale;
        object["scale_mean"] = request.meanScale;
        object["scale_max"] = request.maxScale;
    }
    return requests;
}

Json objectOf(const Summary& summary) {
    Json object;
    object["trace"] = summary.trace;
    object["duration_s"] = toSeconds(summary.durationNs);
    object["from_s"] = toSeconds(summary.fromNs);
    object["to_s"] = toSeconds(summary.toNs);
    object["layer"] = summary.focuses.front().layer;
    object["frames"] = summary.frames;
    for (const Summary::Focus& focus : summary.focuses) {
        object["focus"].push_back({{"from_s", toSeconds(focus.fromNs)},
                                   {"layer", focus.layer},
                                   {"frames", focus.frames}});
    }
    object["passed_over_layer"] = summary.passedOverLayer ? Json(*summary.passedOverLayer) : Json();
    object["top_layers"] = Json::array();
    for (const Summary::LayerFrames& layer : summary.topLayers)
        object["top_layers"].push_back({{"layer", layer.layer}, {"frames", layer.frames}});
    object["other_layers"] = summary.otherLayers;
    object["other_frames"] = summary.otherFrames;
    for (const Summary::Rate& rate : summary.rates) {
        object["refresh_rates"].push_back({{"from_s", toSeconds(rate.fromNs)}, {"hz", rate.hz}});
    }
    object["refresh_rate_source"] = periodSourceWord(summary.periodSource);
    if (!summary.periodCounter.empty()) object["refresh_rate_counter"] = summary.periodCounter;
    object["compositions"] = summary.compositions;
    object["composition_source"] = compositionSourceWord(summary.compositionSource);
    object["boost_depth"] = boostDepthWord(summary.boostDepth);
    object["vsyncs"] = summary.vsyncs;
    object["vsync_source"] = vsyncSourceWord(summary.vsyncSource);
    if (summary.frameVerdicts) {
        object["frame_timeline"] = {{"frames", summary.frameVerdicts->frames},
                                    {"late", summary.frameVerdicts->late},
                                    {"dropped", summary.frameVerdicts->dropped}};
    }
    object["boost_verdicts"] = summary.boostVerdicts;
    object["any_feature_on"] = summary.isAnyFeatureOn;
    object["mode_s"] = nullptr;
    if (summary.hasModes) {
        object["mode_s"] = Json::array();
        for (const int64_t modeNs : summary.modeNs)
            object["mode_s"].push_back(toSeconds(modeNs));
    }
    object["requests"] = requestsOf(summary);
    object["down_s"] = toSeconds(summary.downNs);
    object["down_scale_mean"] = summary.downNs == 0 ? Json() : Json(summary.meanDownScale);
    object["error_lines"] = summary.errorLines;
    object["window_lines"] = summary.windowLines;
    object["errors"] = summary.errors;
    object["warnings"] = Json::array();
    for (const trace::TraceWarning& warning : summary.warnings) {
        Json item = {{"kind", warningWord(warning.kind)}, {"count", warning.lines.lines}};
        if (warning.lines.firstLine != 0) item["first_line"] = warning.lines.firstLine;
        object["warnings"].push_back(std::move(item));
    }
    return object;
}

}  // namespace

void printJson(const std::vector<TraceResult>& results, std::ostream& out) {
    Json root;
    root["version"] = kFormatVersion;
    root["replays"] = Json::array();
    for (const TraceResult& result : results) {
        Json object = objectOf(result.summary);
        if (result.vs) object["vs"] = objectOf(*result.vs);
        root["replays"].push_back(std::move(object));
    }
    // Names in a trace may be invalid UTF-8.
    out << root.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace brevold::report
