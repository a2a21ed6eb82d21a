#include "report/comparison_text.h"

#include <fmt/ostream.h>

#include "base/time_units.h"

namespace brevold::report {

namespace {

void printCount(std::ostream& out, const char* name, int32_t first, int32_t second) {
    fmt::print(out, "  {:<22} {:10}  {:10}  {:+10}\n", name, first, second, second - first);
}

void printFigure(std::ostream& out, const char* name, double first, double second) {
    fmt::print(out, "  {:<22} {:10.3f}  {:10.3f}  {:+10.3f}\n", name, first, second,
               second - first);
}

std::string textOf(const replay::Moment& moment) {
    std::string text;
    const auto append = [&](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
    for (const host::Hint& hint : moment.hints)
        append(host::describe(hint));
    for (int32_t i = 0; i < moment.verdicts; ++i)
        append("verdict");
    return text.empty() ? "nothing" : text;
}

}  // namespace

void printComparison(const Summary& first, const Summary& second,
                     const std::vector<replay::Divergence>& divergences, int64_t traceStartNs,
                     std::ostream& out) {
    fmt::print(out, "\n{:<24} {:>10}  {:>10}  {:>10}\n", "compared", "as given", "--vs",
               "difference");
    for (const host::HintKind kind : host::kHintKinds) {
        printCount(out, host::nameOf(kind), first.of(kind).count, second.of(kind).count);
    }
    printFigure(out, "DOWN scale, mean", first.of(host::HintKind::Down).meanScale,
                second.of(host::HintKind::Down).meanScale);
    printFigure(out, "UP scale, mean", first.of(host::HintKind::Up).meanScale,
                second.of(host::HintKind::Up).meanScale);
    printFigure(out, "under a DOWN hint, s", toSeconds(first.of(host::HintKind::Down).heldNs),
                toSeconds(second.of(host::HintKind::Down).heldNs));
    printFigure(out, "mean scale under it", first.of(host::HintKind::Down).meanHeldScale,
                second.of(host::HintKind::Down).meanHeldScale);
    printCount(out, "boost verdicts", first.boostVerdicts, second.boostVerdicts);
    printCount(out, "lines at error priority", first.errorLines, second.errorLines);
    if (divergences.empty()) {
        out << "  no divergence: the same hints and verdicts at the same times\n";
        return;
    }
    out << "  first divergences\n";
    for (const replay::Divergence& divergence : divergences) {
        fmt::print(out, "  {:10.6f} s  {}  |  {}\n", toSeconds(divergence.timeNs - traceStartNs),
                   textOf(divergence.first), textOf(divergence.second));
    }
}

}  // namespace brevold::report
