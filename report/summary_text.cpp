#include "report/summary_text.h"

#include <fmt/ostream.h>

#include <algorithm>

#include "base/text.h"
#include "brevold/protocol.h"
#include "report/labels.h"

namespace brevold::report {

namespace {

double percent(int64_t partNs, int64_t wholeNs) {
    return wholeNs == 0 ? 0.0 : 100.0 * static_cast<double>(partNs) / static_cast<double>(wholeNs);
}

/** "1 frame", "2 frames" */
std::string counted(int32_t count, const char* noun) {
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

void printLayers(const Summary& summary, std::ostream& out) {
    for (const Summary::Focus& focus : summary.focuses) {
        const bool isFirst = &focus == summary.focuses.data();
        const std::string lead =
                isFirst ? "layer         "
                        : fmt::format("{:14}then from {:.2f} s ", "", toSeconds(focus.fromNs));
        fmt::print(out, "{}{}, {}\n", lead, focus.layer, counted(focus.frames, "frame"));
    }
    if (summary.otherLayers != 0) {
        fmt::print(out, "{:14}others: {} of {}\n", "", counted(summary.otherFrames, "frame"),
                   counted(summary.otherLayers, "layer"));
    }
    if (summary.passedOverLayer) {
        fmt::print(out,
                   "{:14}passed over {}: it has more frames, but is not an application's layer\n",
                   "", *summary.passedOverLayer);
    }
    if (summary.topLayers.size() < 2) return;
    for (const Summary::LayerFrames& layer : summary.topLayers) {
        const bool isFirst = &layer == summary.topLayers.data();
        fmt::print(out, "{:12}{:6}  {}\n", isFirst ? "most frames" : "", layer.frames, layer.layer);
    }
}

void printTrace(const Summary& summary, std::ostream& out) {
    fmt::print(out, "trace         {}, {:.2f} s\n", summary.trace, toSeconds(summary.durationNs));
    if (!summary.isWholeTrace()) {
        fmt::print(out, "window        {:.2f} s to {:.2f} s\n", toSeconds(summary.fromNs),
                   toSeconds(summary.toNs));
    }
    printLayers(summary, out);
    out << "refresh rate  ";
    for (const Summary::Rate& rate : summary.rates) {
        if (&rate != summary.rates.data()) {
            fmt::print(out, ", then from {:.2f} s ", toSeconds(rate.fromNs));
        }
        fmt::print(out, "{:.4g} Hz", rate.hz);
    }
    fmt::print(out, " (from {})\n", periodSourceText(summary.periodSource, summary.periodCounter));
    fmt::print(out, "compositions  {} (from {})\n", summary.compositions,
               compositionSourceText(summary.compositionSource));
    fmt::print(out, "boost depth   {} ({})\n", boostDepthWord(summary.boostDepth),
               boostDepthText(summary.boostDepth));
    fmt::print(out, "vsyncs        {} ({}), boost verdicts {}\n", summary.vsyncs,
               vsyncSourceText(summary.vsyncSource), summary.boostVerdicts);
    if (summary.frameVerdicts) {
        fmt::print(out, "deadlines     {} frames, {} late, {} dropped (from the frame timeline)\n",
                   summary.frameVerdicts->frames, summary.frameVerdicts->late,
                   summary.frameVerdicts->dropped);
    }
    if (!summary.isAnyFeatureOn) {
        out << "features      all off, so the library sends no hints; is a --profile missing?\n";
    }
}

void printModes(const Summary& summary, std::ostream& out) {
    out << "\nframe-rate mode                 time   share\n";
    if (!summary.hasModes) {
        fmt::print(out, "  {}\n", replay::kNoModesText);
        return;
    }
    for (size_t mode = 0; mode < summary.modeNs.size(); ++mode) {
        fmt::print(out, "  {}  {:<23} {:6.2f} s {:6.1f} %\n", mode, android::kModeLabels[mode],
                   toSeconds(summary.modeNs[mode]),
                   percent(summary.modeNs[mode], summary.windowNs()));
    }
}

void printRequests(const Summary& summary, std::ostream& out) {
    out << "\nrequest          count   scale:   min    mean     max\n";
    for (const host::HintKind kind : host::kHintKinds) {
        const RequestSummary& request = summary.of(kind);
        fmt::print(out, "  {:<13} {:6}", host::nameOf(kind), request.count);
        if (host::hasScale(kind) && request.count != 0) {
            fmt::print(out, "         {:6.3f}  {:6.3f}  {:6.3f}", request.minScale,
                       request.meanScale, request.maxScale);
        }
        out << '\n';
    }
    fmt::print(out, "  under a DOWN hint {:.2f} s, {:.1f} % of the time", toSeconds(summary.downNs),
               percent(summary.downNs, summary.windowNs()));
    if (summary.downNs != 0) fmt::print(out, ", at a mean scale of {:.3f}", summary.meanDownScale);
    out << '\n';
}

void printLog(const Summary& summary, std::ostream& out) {
    fmt::print(out, "\nlog at error priority: {} lines, {} of them measuring windows\n",
               summary.errorLines, summary.windowLines);
    for (const auto& [text, count] : summary.errors)
        fmt::print(out, "  {} x {}\n", count, text);
}

/** Names the layer that has the focus first, and the number of changes. */
std::string focusText(const Summary& summary) {
    const std::string& first = summary.focuses.front().layer;
    const size_t changes = summary.focuses.size() - 1;
    if (changes == 0) return first;
    return fmt::format("{} ({} {})", first, changes, changes == 1 ? "change" : "changes");
}

void printRow(const Summary& summary, const char* suffix, size_t layerWidth, std::ostream& out) {
    fmt::print(out, "{:7.2f} {:6}  {:5.4g}", toSeconds(summary.windowNs()), summary.frames,
               summary.rates.back().hz);
    for (const host::HintKind kind : host::kHintKinds)
        fmt::print(out, " {:12}", summary.of(kind).count);
    fmt::print(out, " {:7.1f} {:7.3f} {:8}  {:<{}}  {}{}\n",
               percent(summary.downNs, summary.windowNs()), summary.meanDownScale,
               summary.boostVerdicts, focusText(summary), layerWidth, summary.trace, suffix);
}

}  // namespace

void print(const Summary& summary, std::ostream& out) {
    printTrace(summary, out);
    printModes(summary, out);
    printRequests(summary, out);
    printLog(summary, out);
    if (!summary.warnings.empty()) out << '\n';
    for (const trace::TraceWarning& warning : summary.warnings)
        fmt::print(out, "warning: {}\n", warningText(warning));
}

void printRows(const std::vector<TraceResult>& results, std::ostream& out) {
    constexpr std::string_view kLayerTitle = "layer";
    size_t layerWidth = kLayerTitle.size();
    for (const TraceResult& result : results)
        layerWidth = std::max(layerWidth, focusText(result.summary).size());
    fmt::print(out, "{:>7} {:>6}  {:>5}", "time/s", "frames", "Hz");
    for (const host::HintKind kind : host::kHintKinds)
        fmt::print(out, " {:>12}", host::nameOf(kind));
    fmt::print(out, " {:>7} {:>7} {:>8}  {:<{}}  {}\n", "down/%", "scale", "verdicts", kLayerTitle,
               layerWidth, "trace");
    for (const TraceResult& result : results) {
        printRow(result.summary, "", layerWidth, out);
        if (result.vs) printRow(*result.vs, " (--vs)", layerWidth, out);
    }
    for (const TraceResult& result : results) {
        for (const trace::TraceWarning& warning : result.summary.warnings)
            fmt::print(out, "warning: {}: {}\n", result.summary.trace, warningText(warning));
    }
}

}  // namespace brevold::report
