#include "replay/summary.h"

#include <algorithm>
#include <string_view>

#include "base/text.h"
#include "replay/hint_span.h"

namespace brevold::replay {

namespace {

constexpr int kErrorPriority = 6;
// "[FM]gMode:2 \tFPS:\t59.98 ..."
constexpr std::string_view kWindowTag = "[FM]";

void countEvents(const trace::Timeline& timeline, Summary& summary) {
    for (const trace::TimelineEvent& event : timeline.events) {
        switch (event.kind) {
            case trace::TimelineEvent::Kind::Period:
                summary.rates.push_back({event.timeNs - timeline.startNs,
                                         1e9 / static_cast<double>(event.periodNs)});
                break;
            case trace::TimelineEvent::Kind::CompositionBegin:
                ++summary.compositions;
                break;
            case trace::TimelineEvent::Kind::Vsync:
                ++summary.vsyncs;
                break;
            case trace::TimelineEvent::Kind::Frame:
            case trace::TimelineEvent::Kind::Depth:
            case trace::TimelineEvent::Kind::CompositionEnd:
                break;
        }
    }
}

Summary::FrameVerdicts countVerdicts(const std::vector<trace::JudgedFrame>& frames) {
    Summary::FrameVerdicts counts = {static_cast<int32_t>(frames.size()), 0, 0};
    for (const trace::JudgedFrame& frame : frames) {
        counts.late += frame.verdict == trace::FrameVerdict::Late ? 1 : 0;
        counts.dropped += frame.verdict == trace::FrameVerdict::Dropped ? 1 : 0;
    }
    return counts;
}

void sumRequests(const std::vector<host::Hint>& hints, Summary& summary) {
    for (const host::Hint& hint : hints) {
        RequestSummary& request = summary.requests[static_cast<size_t>(hint.kind)];
        request.minScale = request.count == 0 ? hint.scale : std::min(request.minScale, hint.scale);
        request.maxScale = std::max(request.maxScale, hint.scale);
        request.meanScale += hint.scale;
        ++request.count;
    }
    for (RequestSummary& request : summary.requests) {
        if (request.count != 0) request.meanScale /= request.count;
    }
}

void sumDownTime(const std::vector<host::Hint>& hints, int64_t endNs, Summary& summary) {
    for (const HintSpan& span : hintSpans(hints, endNs)) {
        if (span.hint.kind != host::HintKind::Down) continue;
        const int64_t coveredNs = span.endNs - span.hint.timeNs;
        summary.downNs += coveredNs;
        summary.meanDownScale += span.hint.scale * toSeconds(coveredNs);
    }
    if (summary.downNs != 0) summary.meanDownScale /= toSeconds(summary.downNs);
}

void sumModes(const std::vector<ModeChange>& modes, int64_t endNs, Summary& summary) {
    summary.hasModes = !modes.empty();
    for (size_t i = 0; i < modes.size(); ++i) {
        const int64_t untilNs = i + 1 < modes.size() ? modes[i + 1].timeNs : endNs;
        summary.modeNs[static_cast<size_t>(modes[i].mode)] += untilNs - modes[i].timeNs;
    }
}

void sumLog(const std::vector<host::LogLine>& log, Summary& summary) {
    for (const host::LogLine& line : log) {
        if (line.priority != kErrorPriority) continue;
        ++summary.errorLines;
        if (line.text.compare(0, kWindowTag.size(), kWindowTag) == 0) {
            ++summary.windowLines;
        } else {
            ++summary.errors[line.text.substr(0, line.text.find('\n'))];
        }
    }
}

}  // namespace

Summary summarise(const std::string& trace, const trace::Timeline& timeline,
                  const Recording& recording) {
    Summary summary = {};
    const trace::Layer& focused = timeline.layers[timeline.focusedLayer];
    summary.trace = trace;
    summary.durationNs = timeline.endNs - timeline.startNs;
    summary.layer = focused.name;
    summary.frames = focused.frames;
    for (const trace::Layer& layer : timeline.layers) {
        if (&layer == &focused || layer.frames == 0) continue;
        ++summary.otherLayers;
        summary.otherFrames += layer.frames;
    }
    summary.periodSource = timeline.periodSource;
    summary.periodCounter = timeline.periodCounter;
    summary.compositionSource = timeline.compositionSource;
    summary.vsyncSource = timeline.vsyncSource;
    if (timeline.judgedFrames) summary.frameVerdicts = countVerdicts(*timeline.judgedFrames);
    summary.warnings = timeline.warnings;
    summary.boostVerdicts = static_cast<int32_t>(recording.verdictTimesNs.size());
    summary.isAnyFeatureOn = recording.isAnyFeatureOn;
    countEvents(timeline, summary);
    sumRequests(recording.hints, summary);
    sumDownTime(recording.hints, timeline.endNs, summary);
    sumModes(recording.modes, timeline.endNs, summary);
    sumLog(recording.log, summary);
    return summary;
}

}  // namespace brevold::replay
