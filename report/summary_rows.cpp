#include "report/summary_rows.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <string_view>

#include "base/text.h"
#include "base/time_units.h"
#include "report/labels.h"

namespace brevold::report {

namespace {

/** Names the layer that has the focus first, and the number of changes. */
std::string focusText(const Summary& summary) {
    const std::string& first = summary.focuses.front().layer;
    const size_t changes = summary.focuses.size() - 1;
    if (changes == 0) return first;
    return fmt::format("{} ({} {})", first, changes, changes == 1 ? "change" : "changes");
}

void printRow(const Summary& summary, const char* suffix, size_t layerWidth, std::ostream& out) {
    const RequestSummary& down = summary.of(host::HintKind::Down);
    fmt::print(out, "{:7.2f} {:6}  {:5.4g}", toSeconds(summary.windowNs()), summary.frames,
               summary.rates.back().hz);
    for (const host::HintKind kind : host::kHintKinds)
        fmt::print(out, " {:12}", summary.of(kind).count);
    fmt::print(out, " {:7.1f} {:7.3f} {:8}  {:<{}}  {}{}\n",
               percentOf(down.heldNs, summary.windowNs()), down.meanHeldScale,
               summary.boostVerdicts, focusText(summary), layerWidth, summary.trace, suffix);
}

}  // namespace

void printRows(const std::vector<TraceResult>& results, std::ostream& out, Legend legend) {
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
    if (legend == Legend::Shown) out << legendOf(Block::Rows) << legendOf(Block::Requests);
    for (const TraceResult& result : results) {
        for (const trace::TraceWarning& warning : result.summary.warnings)
            fmt::print(out, "warning: {}: {}\n", result.summary.trace, warningText(warning));
    }
}

}  // namespace brevold::report
