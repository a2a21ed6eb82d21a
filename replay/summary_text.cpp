#include "replay/summary_text.h"

#include "base/text.h"
#include "brevold/protocol.h"
#include "replay/labels.h"

namespace brevold::replay {

namespace {

double percent(int64_t partNs, int64_t wholeNs) {
    return wholeNs == 0 ? 0.0 : 100.0 * static_cast<double>(partNs) / static_cast<double>(wholeNs);
}

void printModes(const Summary& summary, std::ostream& out) {
    out << "\nframe-rate mode                 time   share\n";
    if (!summary.hasModes) {
        out << "  not reported: the library tells it only with jank boost or energy scaling "
               "allowed\n"
               "  and vendor.perf.brevold.debug=1\n";
        return;
    }
    for (size_t mode = 0; mode < summary.modeNs.size(); ++mode) {
        out << format("  %zu  %-23s %6.2f s %6.1f %%\n", mode, android::kModeLabels[mode],
                      toSeconds(summary.modeNs[mode]),
                      percent(summary.modeNs[mode], summary.durationNs));
    }
}

void printRequests(const Summary& summary, std::ostream& out) {
    out << "\nrequest          count   scale:   min    mean     max\n";
    for (const host::HintKind kind : host::kHintKinds) {
        const RequestSummary& request = summary.of(kind);
        out << format("  %-13s %6d", host::nameOf(kind), request.count);
        if (host::hasScale(kind) && request.count != 0) {
            out << format("         %6.3f  %6.3f  %6.3f", request.minScale, request.meanScale,
                          request.maxScale);
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
    for (const host::HintKind kind : host::kHintKinds)
        out << format(" %12d", summary.of(kind).count);
    out << format(" %7.1f %7.3f %8d  ", percent(summary.downNs, summary.durationNs),
                  summary.meanDownScale, summary.boostVerdicts)
        << summary.trace << mark << '\n';
}

}  // namespace

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
    out << " (from " << periodSourceText(summary.periodSource, summary.periodCounter) << ")\n"
        << "compositions  " << summary.compositions << " (from "
        << compositionSourceText(summary.compositionSource) << ")\n"
        << "vsyncs        " << summary.vsyncs << " (" << vsyncSourceText(summary.vsyncSource)
        << "), boost verdicts " << summary.boostVerdicts << '\n';
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
    for (const trace::TraceWarning& warning : summary.warnings)
        out << "warning: " << warningText(warning) << '\n';
}

void printRows(const std::vector<TraceResult>& results, std::ostream& out) {
    out << format("%7s %6s  %5s", "time/s", "frames", "Hz");
    for (const host::HintKind kind : host::kHintKinds)
        out << format(" %12s", host::nameOf(kind));
    out << format(" %7s %7s %8s  %s\n", "down/%", "scale", "verdicts", "trace");
    for (const TraceResult& result : results) {
        printRow(result.summary, "", out);
        if (result.vs) printRow(*result.vs, " (--vs)", out);
    }
    for (const TraceResult& result : results) {
        for (const trace::TraceWarning& warning : result.summary.warnings)
            out << "warning: " << result.summary.trace << ": " << warningText(warning) << '\n';
    }
}

}  // namespace brevold::replay
