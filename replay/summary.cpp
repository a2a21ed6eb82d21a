#include "replay/summary.h"

#include <algorithm>

#include "replay/hint_span.h"
#include "replay/text.h"

namespace brevold::replay {

namespace {

constexpr int kErrorPriority = 6;

double percent(int64_t partNs, int64_t wholeNs) {
    return wholeNs == 0 ? 0.0 : 100.0 * static_cast<double>(partNs) / static_cast<double>(wholeNs);
}

void countEvents(const Timeline& timeline, Summary& summary) {
    for (const TimelineEvent& event : timeline.events) {
        switch (event.kind) {
            case TimelineEvent::Kind::Period:
                summary.rates.push_back({event.timeNs - timeline.startNs,
                                         1e9 / static_cast<double>(event.periodNs)});
                break;
            case TimelineEvent::Kind::CompositionBegin:
                ++summary.compositions;
                break;
            case TimelineEvent::Kind::Vsync:
                ++summary.vsyncs;
                break;
            case TimelineEvent::Kind::Depth:
            case TimelineEvent::Kind::CompositionEnd:
                break;
        }
    }
}

void sumRequests(const std::vector<Hint>& hints, Summary& summary) {
    for (const Hint& hint : hints) {
        RequestSummary& request = summary.requests[static_cast<size_t>(hint.kind)];
        request.leastScale =
                request.count == 0 ? hint.scale : std::min(request.leastScale, hint.scale);
        request.mostScale = std::max(request.mostScale, hint.scale);
        request.meanScale += hint.scale;
        ++request.count;
    }
    for (RequestSummary& request : summary.requests) {
        if (request.count != 0) request.meanScale /= request.count;
    }
}

void sumDownTime(const std::vector<Hint>& hints, int64_t endNs, Summary& summary) {
    for (const HintSpan& span : hintSpans(hints, endNs)) {
        if (span.hint.kind != HintKind::Down) continue;
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
        if (line.text.rfind("[FM]", 0) == 0) {
            ++summary.windowLines;
        } else {
            ++summary.errors[line.text.substr(0, line.text.find('\n'))];
        }
    }
}

void printModes(const Summary& summary, std::ostream& out) {
    constexpr const char* kModeNames[] = {"0  27 fps and less",         "1  27 to 32 fps",
                                          "2  47 to 62 fps (60 Hz)",    "3  77 to 92 fps (90 Hz)",
                                          "4  107 to 122 fps (120 Hz)", "5  unclassified or idle"};
    out << "\nframe-rate mode                 time   share\n";
    if (!summary.hasModes) {
        out << "  not reported: the library tells it only with jank boost or energy scaling "
               "allowed\n"
               "  and vendor.perf.brevold.debug=1\n";
        return;
    }
    for (size_t mode = 0; mode < summary.modeNs.size(); ++mode) {
        out << format("  %-26s %6.2f s %6.1f %%\n", kModeNames[mode],
                      toSeconds(summary.modeNs[mode]),
                      percent(summary.modeNs[mode], summary.durationNs));
    }
}

void printRequests(const Summary& summary, std::ostream& out) {
    out << "\nrequest          count   scale: least    mean    most\n";
    for (const HintKind kind : kHintKinds) {
        const RequestSummary& request = summary.of(kind);
        out << format("  %-13s %6d", nameOf(kind), request.count);
        if (hasScale(kind) && request.count != 0) {
            out << format("         %6.3f  %6.3f  %6.3f", request.leastScale, request.meanScale,
                          request.mostScale);
        }
        out << '\n';
    }
    out << format("  under a DOWN hint %.2f s, %.1f %% of the time", toSeconds(summary.downNs),
                  percent(summary.downNs, summary.durationNs));
    if (summary.downNs != 0) out << format(", at a mean scale of %.3f", summary.meanDownScale);
    out << '\n';
}

void printRow(const Summary& summary, const char* mark, std::ostream& out) {
    out << format("%7.2f %6d  %5.4g", toSeconds(summary.durationNs), summary.frames,
                  summary.rates.back().hz);
    for (const HintKind kind : kHintKinds)
        out << format(" %12d", summary.of(kind).count);
    out << format(" %7.1f %7.3f %8d  ", percent(summary.downNs, summary.durationNs),
                  summary.meanDownScale, summary.boostVerdicts)
        << summary.trace << mark << '\n';
}

}  // namespace

Summary summarise(const std::string& trace, const Timeline& timeline, const Recording& recording) {
    Summary summary = {};
    const Layer& focused = timeline.layers[timeline.focusedLayer];
    summary.trace = trace;
    summary.durationNs = timeline.endNs - timeline.startNs;
    summary.layer = focused.name;
    summary.frames = focused.frames;
    for (const Layer& layer : timeline.layers) {
        if (&layer == &focused || layer.frames == 0) continue;
        ++summary.otherLayers;
        summary.otherFrames += layer.frames;
    }
    summary.rateSource = timeline.periodSource;
    summary.compositionSource = timeline.compositionSource;
    summary.vsyncSource = timeline.vsyncSource;
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

void print(const Summary& summary, std::ostream& out) {
    out << format("trace         %s, %.2f s\n", summary.trace.c_str(),
                  toSeconds(summary.durationNs))
        << "layer         " << summary.layer << ", " << summary.frames << " frames\n";
    if (summary.otherLayers != 0) {
        out << "              others: " << summary.otherFrames << " frames of "
            << summary.otherLayers << (summary.otherLayers == 1 ? " layer\n" : " layers\n");
    }
    out << "refresh rate  ";
    for (const Summary::Rate& rate : summary.rates) {
        if (&rate != summary.rates.data())
            out << format(", then from %.2f s ", toSeconds(rate.fromNs));
        out << format("%.4g Hz", rate.hz);
    }
    out << " (from " << summary.rateSource << ")\n"
        << "compositions  " << summary.compositions << " (from " << summary.compositionSource
        << ")\n"
        << "vsyncs        " << summary.vsyncs << " (" << summary.vsyncSource << "), boost verdicts "
        << summary.boostVerdicts << '\n';
    if (!summary.isAnyFeatureOn) {
        out << "features      all off, so the library asks for nothing: is there a --profile?\n";
    }
    printModes(summary, out);
    printRequests(summary, out);
    out << "\nlog at error priority: " << summary.errorLines << " lines, " << summary.windowLines
        << " of them measuring windows\n";
    for (const auto& [text, count] : summary.errors)
        out << "  " << count << " x " << text << '\n';
    if (!summary.warnings.empty()) out << '\n';
    for (const std::string& warning : summary.warnings)
        out << "warning: " << warning << '\n';
}

void printRows(const std::vector<TraceResult>& results, std::ostream& out) {
    out << format("%7s %6s  %5s", "time/s", "frames", "Hz");
    for (const HintKind kind : kHintKinds)
        out << format(" %12s", nameOf(kind));
    out << format(" %7s %7s %8s  %s\n", "down/%", "scale", "verdicts", "trace");
    for (const TraceResult& result : results) {
        printRow(result.summary, "", out);
        if (result.vs) printRow(*result.vs, " (--vs)", out);
    }
    for (const TraceResult& result : results) {
        for (const std::string& warning : result.summary.warnings)
            out << "warning: " << result.summary.trace << ": " << warning << '\n';
    }
}

}  // namespace brevold::replay
