#include "report/result_bytes.h"

#include <cereal/archives/binary.hpp>
#include <cereal/types/array.hpp>
#include <cereal/types/map.hpp>
#include <cereal/types/optional.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>
#include <sstream>

// Each function names all members, so a new member does not compile until it is added here.

namespace brevold {

template <typename Archive>
void serialize(Archive& archive, LineCount& count) {
    auto& [lines, firstLine] = count;
    archive(lines, firstLine);
}

}  // namespace brevold

namespace brevold::trace {

template <typename Archive>
void serialize(Archive& archive, TraceWarning& warning) {
    auto& [kind, lines, fromNs, pid, otherPid] = warning;
    archive(kind, lines, fromNs, pid, otherPid);
}

}  // namespace brevold::trace

namespace brevold::report {

template <typename Archive>
void serialize(Archive& archive, Summary::Focus& focus) {
    auto& [fromNs, layer, frames] = focus;
    archive(fromNs, layer, frames);
}

template <typename Archive>
void serialize(Archive& archive, Summary::LayerFrames& layerFrames) {
    auto& [layer, frames] = layerFrames;
    archive(layer, frames);
}

template <typename Archive>
void serialize(Archive& archive, Summary::Rate& rate) {
    auto& [fromNs, hz] = rate;
    archive(fromNs, hz);
}

template <typename Archive>
void serialize(Archive& archive, Summary::FrameVerdicts& verdicts) {
    auto& [frames, late, dropped] = verdicts;
    archive(frames, late, dropped);
}

template <typename Archive>
void serialize(Archive& archive, FrameFigures& figures) {
    auto& [intervals, meanRateHz, medianNs, p95Ns, p99Ns, missedRefreshes, idleNs] = figures;
    archive(intervals, meanRateHz, medianNs, p95Ns, p99Ns, missedRefreshes, idleNs);
}

template <typename Archive>
void serialize(Archive& archive, RequestSummary& request) {
    auto& [count, minScale, meanScale, maxScale, p05Scale, p50Scale, p95Scale, zeroScales,
           scaleCounts, heldNs, meanHeldScale] = request;
    archive(count, minScale, meanScale, maxScale, p05Scale, p50Scale, p95Scale, zeroScales,
            scaleCounts, heldNs, meanHeldScale);
}

template <typename Archive>
void serialize(Archive& archive, Summary& summary) {
    auto& [trace, startNs, durationNs, fromNs, toNs, focuses, frames, frameFigures, outcomes,
           otherFrames, otherLayers, topLayers, passedOverLayer, rates, rateNs, periodSource,
           periodCounter, compositions, compositionSource, boostDepth, vsyncs, vsyncSource,
           frameVerdicts, boostVerdicts, isAnyFeatureOn, hasModes, modeNs, requests, errorLines,
           windowLines, errors, warnings] = summary;
    archive(trace, startNs, durationNs, fromNs, toNs, focuses, frames, frameFigures, outcomes,
            otherFrames, otherLayers, topLayers, passedOverLayer, rates, rateNs, periodSource,
            periodCounter, compositions, compositionSource, boostDepth, vsyncs, vsyncSource,
            frameVerdicts, boostVerdicts, isAnyFeatureOn, hasModes, modeNs, requests, errorLines,
            windowLines, errors, warnings);
}

template <typename Archive>
void serialize(Archive& archive, TraceResult& result) {
    auto& [summary, vs] = result;
    archive(summary, vs);
}

std::string toBytes(const TraceResult& result) {
    std::ostringstream bytes;
    cereal::BinaryOutputArchive{bytes}(result);
    return bytes.str();
}

TraceResult toResult(const std::string& bytes) {
    std::istringstream stream(bytes);
    TraceResult result;
    cereal::BinaryInputArchive{stream}(result);
    return result;
}

}  // namespace brevold::report
