#include "report/summary.h"

#include <log/log.h>

#include <algorithm>

#include "replay/hint_span.h"
#include "replay/window_line.h"
#include "report/event_counter.h"

namespace brevold::report {

namespace {

Summary::FrameVerdicts countVerdicts(const trace::Timeline& timeline,
                                     const replay::TimeWindow& window) {
    // A frame may end outside the events of the compositor.
    const replay::TimeWindow wholeTrace = {timeline.startNs, timeline.endNs};
    Summary::FrameVerdicts counts = {0, 0, 0};
    for (const trace::JudgedFrame& frame : *timeline.judgedFrames) {
        if (!window.contains(wholeTrace.clamp(frame.endNs))) continue;
        ++counts.frames;
        counts.late += frame.verdict == trace::FrameVerdict::Late ? 1 : 0;
        counts.dropped += frame.verdict == trace::FrameVerdict::Dropped ? 1 : 0;
    }
    return counts;
}

void sumModes(const std::vector<replay::ModeChange>& modes, const replay::TimeWindow& window,
              Summary& summary) {
    summary.hasModes = !modes.empty();
    for (size_t i = 0; i < modes.size(); ++i) {
        const int64_t untilNs = i + 1 < modes.size() ? modes[i + 1].timeNs : window.endNs;
        summary.modeNs[static_cast<size_t>(modes[i].mode)] +=
                window.clamp(untilNs) - window.clamp(modes[i].timeNs);
    }
}

void sumLog(const std::vector<host::LogLine>& log, const replay::TimeWindow& window,
            Summary& summary) {
    for (const host::LogLine& line : log) {
        if (line.priority != ANDROID_LOG_ERROR || !window.contains(line.timeNs)) continue;
        ++summary.errorLines;
        if (replay::modeOfWindowLine(line.text)) {
            ++summary.windowLines;
        } else {
            ++summary.errors[line.text.substr(0, line.text.find('\n'))];
        }
    }
}

}  // namespace

Summary summarise(const std::string& trace, const trace::Timeline& timeline,
                  const replay::Recording& recording, const replay::TimeWindow& window) {
    Summary summary = {};
    summary.trace = trace;
    summary.startNs = timeline.startNs;
    summary.durationNs = timeline.endNs - timeline.startNs;
    summary.fromNs = window.beginNs - timeline.startNs;
    summary.toNs = window.endNs - timeline.startNs;
    if (timeline.passedOverLayer) {
        summary.passedOverLayer = timeline.layers[*timeline.passedOverLayer].name;
    }
    summary.periodSource = timeline.periodSource;
    summary.periodCounter = timeline.periodCounter;
    summary.compositionSource = timeline.compositionSource;
    summary.boostDepth = recording.options.boostDepth;
    summary.vsyncSource = timeline.vsyncSource;
    if (timeline.judgedFrames) {
        summary.frameVerdicts = countVerdicts(timeline, window);
    }
    summary.warnings = timeline.warnings;
    summary.boostVerdicts = static_cast<int32_t>(
            std::count_if(recording.verdictTimesNs.begin(), recording.verdictTimesNs.end(),
                          [&](int64_t timeNs) { return window.contains(timeNs); }));
    summary.isAnyFeatureOn = recording.isAnyFeatureOn;
    countEvents(timeline, window, summary);
    summary.frameFigures = frameFigures(timeline, window);
    for (const replay::DecidedFrame& frame : recording.frames) {
        if (window.contains(frame.timeNs)) ++summary.outcomes[static_cast<size_t>(frame.outcome)];
    }
    summary.requests = summariseRequests(
            recording.hints, replay::hintSpans(recording.hints, timeline.endNs), window);
    sumModes(recording.modes, window, summary);
    sumLog(recording.log, window, summary);
    return summary;
}

}  // namespace brevold::report
