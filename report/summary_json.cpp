#include "report/summary_json.h"

#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "base/time_units.h"
#include "report/labels.h"
#include "report/warning_json.h"

namespace brevold::report {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormatVersion = 2;

/** The two times of a moment: "NAME_s" since the first event, "NAME_trace_s" of the trace's clock.
 */
void addTime(Json& object, const std::string& name, const Summary& summary, int64_t ns) {
    object[name + "_s"] = toSeconds(ns);
    object[name + "_trace_s"] = toSeconds(summary.startNs + ns);
}

Json startingAt(const Summary& summary, int64_t fromNs) {
    Json object;
    addTime(object, "from", summary, fromNs);
    return object;
}

/** A figure that has no value without counted items is null then. */
Json figure(int32_t count, double value) {
    return count == 0 ? Json() : Json(value);
}

Json pace(const FrameFigures& figures) {
    const auto ms = [&](int64_t ns) { return figure(figures.intervals, toMs(ns)); };
    return {{"rate_hz", figure(figures.intervals, figures.meanRateHz)},
            {"interval_p50_ms", ms(figures.medianNs)},
            {"interval_p95_ms", ms(figures.p95Ns)},
            {"interval_p99_ms", ms(figures.p99Ns)},
            {"missed_refreshes", figures.missedRefreshes},
            {"idle_s", toSeconds(figures.idleNs)}};
}

Json requestOf(const Summary& summary, host::HintKind kind) {
    const RequestSummary& request = summary.of(kind);
    const auto scale = [&](double value) { return figure(request.count, value); };
    const double windowS = toSeconds(summary.windowNs());
    Json object = {{"count", request.count},
                   {"per_s", windowS == 0.0 ? Json() : Json(request.count / windowS)}};
    if (!host::hasScale(kind)) return object;
    object["held_s"] = toSeconds(request.heldNs);
    object["held_scale_mean"] = request.heldNs == 0 ? Json() : Json(request.meanHeldScale);
    object["scale_min"] = scale(request.minScale);
    object["scale_mean"] = scale(request.meanScale);
    object["scale_max"] = scale(request.maxScale);
    object["scale_p05"] = scale(request.p05Scale);
    object["scale_p50"] = scale(request.p50Scale);
    object["scale_p95"] = scale(request.p95Scale);
    if (scaleBinsOf(kind) != nullptr) object["scale_counts"] = request.scaleCounts;
    if (kind == host::HintKind::Down) object["scale_zero"] = request.zeroScales;
    return object;
}

void addTrace(const Summary& summary, Json& object) {
    object["trace"] = summary.trace;
    object["duration_s"] = toSeconds(summary.durationNs);
    addTime(object, "from", summary, summary.fromNs);
    addTime(object, "to", summary, summary.toNs);
    object["layer"] = summary.focuses.front().layer;
    object["frames"] = summary.frames;
    object["pace"] = pace(summary.frameFigures);
    for (const Summary::Focus& focus : summary.focuses) {
        Json item = startingAt(summary, focus.fromNs);
        item["layer"] = focus.layer;
        item["frames"] = focus.frames;
        object["focus"].push_back(std::move(item));
    }
    object["passed_over_layer"] = summary.passedOverLayer ? Json(*summary.passedOverLayer) : Json();
    object["top_layers"] = Json::array();
    for (const Summary::LayerFrames& layer : summary.topLayers)
        object["top_layers"].push_back({{"layer", layer.layer}, {"frames", layer.frames}});
    object["other_layers"] = summary.otherLayers;
    object["other_frames"] = summary.otherFrames;
    for (const Summary::Rate& rate : summary.rates) {
        Json item = startingAt(summary, rate.fromNs);
        item["hz"] = rate.hz;
        object["refresh_rates"].push_back(std::move(item));
    }
    for (const auto& [hz, ns] : summary.rateNs)
        object["refresh_rate_times"].push_back({{"hz", hz}, {"s", toSeconds(ns)}});
    object["refresh_rate_source"] = periodSourceWord(summary.periodSource);
    object["refresh_rate_counter"] =
            summary.periodCounter.empty() ? Json() : Json(summary.periodCounter);
    object["compositions"] = summary.compositions;
    object["composition_source"] = compositionSourceWord(summary.compositionSource);
    object["vsyncs"] = summary.vsyncs;
    object["vsync_source"] = vsyncSourceWord(summary.vsyncSource);
    object["frame_timeline"] = nullptr;
    if (summary.frameVerdicts) {
        object["frame_timeline"] = {{"frames", summary.frameVerdicts->frames},
                                    {"late", summary.frameVerdicts->late},
                                    {"dropped", summary.frameVerdicts->dropped}};
    }
    object["warnings"] = Json::array();
    for (const trace::TraceWarning& warning : summary.warnings)
        object["warnings"].push_back(warningOf(warning));
}

void addReplay(const Summary& summary, Json& object) {
    object["boost_depth"] = boostDepthWord(summary.boostDepth);
    object["any_feature_on"] = summary.isAnyFeatureOn;
    for (const host::HintKind kind : host::kHintKinds)
        object["requests"][hintWord(kind)] = requestOf(summary, kind);
    object["boost_verdicts"] = summary.boostVerdicts;
    for (const replay::FrameOutcome outcome : replay::kFrameOutcomes)
        object["frame_outcomes"][outcomeWord(outcome)] = summary.of(outcome);
    object["mode_s"] = nullptr;
    if (summary.hasModes) {
        object["mode_s"] = Json::array();
        for (const int64_t modeNs : summary.modeNs)
            object["mode_s"].push_back(toSeconds(modeNs));
    }
    object["error_lines"] = summary.errorLines;
    object["window_lines"] = summary.windowLines;
    object["errors"] = summary.errors;
}

Json objectOf(const Summary& summary) {
    Json object;
    addTrace(summary, object);
    addReplay(summary, object);
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
