#include "replay/comparison.h"

#include <map>

#include "base/text.h"

namespace brevold::replay {

namespace {

using Moments = std::map<int64_t, std::string>;

Moments momentsOf(const Recording& recording) {
    Moments moments;
    const auto add = [&](int64_t timeNs, const std::string& what) {
        std::string& text = moments[timeNs];
        text += (text.empty() ? "" : ", ") + what;
    };
    for (const host::Hint& hint : recording.hints)
        add(hint.timeNs, host::describe(hint));
    for (const int64_t timeNs : recording.verdictTimesNs)
        add(timeNs, "verdict");
    return moments;
}

void printCount(std::ostream& out, const char* name, int32_t first, int32_t second) {
    out << format("  %-22s %10d  %10d  %+10d\n", name, first, second, second - first);
}

void printFigure(std::ostream& out, const char* name, double first, double second) {
    out << format("  %-22s %10.3f  %10.3f  %+10.3f\n", name, first, second, second - first);
}

}  // namespace

std::vector<Parting> firstPartings(const Recording& first, const Recording& second, size_t most) {
    const Moments ours = momentsOf(first);
    const Moments theirs = momentsOf(second);
    std::vector<Parting> partings;
    auto our = ours.begin();
    auto their = theirs.begin();
    while (partings.size() < most && (our != ours.end() || their != theirs.end())) {
        if (their == theirs.end() || (our != ours.end() && our->first < their->first)) {
            partings.push_back({our->first, our->second, "nothing"});
            ++our;
        } else if (our == ours.end() || their->first < our->first) {
            partings.push_back({their->first, "nothing", their->second});
            ++their;
        } else {
            if (our->second != their->second) {
                partings.push_back({our->first, our->second, their->second});
            }
            ++our;
            ++their;
        }
    }
    return partings;
}

void printComparison(const Summary& first, const Summary& second,
                     const std::vector<Parting>& partings, int64_t traceStartNs,
                     std::ostream& out) {
    out << format("\n%-24s %10s  %10s  %10s\n", "compared", "as given", "--vs", "difference");
    for (const host::HintKind kind : host::kHintKinds) {
        printCount(out, host::nameOf(kind), first.of(kind).count, second.of(kind).count);
    }
    printFigure(out, "DOWN scale, mean", first.of(host::HintKind::Down).meanScale,
                second.of(host::HintKind::Down).meanScale);
    printFigure(out, "UP scale, mean", first.of(host::HintKind::Up).meanScale,
                second.of(host::HintKind::Up).meanScale);
    printFigure(out, "under a DOWN hint, s", toSeconds(first.downNs), toSeconds(second.downNs));
    printFigure(out, "mean scale under it", first.meanDownScale, second.meanDownScale);
    printCount(out, "boost verdicts", first.boostVerdicts, second.boostVerdicts);
    printCount(out, "lines at error priority", first.errorLines, second.errorLines);
    if (partings.empty()) {
        out << "  they never part: the same requests and verdicts at the same times\n";
        return;
    }
    out << "  they first part at\n";
    for (const Parting& parting : partings) {
        out << format("  %10.6f s  %s  |  %s\n", toSeconds(parting.timeNs - traceStartNs),
                      parting.first.c_str(), parting.second.c_str());
    }
}

}  // namespace brevold::replay
