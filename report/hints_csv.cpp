#include "report/hints_csv.h"

#include <fmt/ostream.h>

#include <string>
#include <string_view>

#include "base/time_units.h"
#include "report/labels.h"

namespace brevold::report {

namespace {

std::string exactSeconds(int64_t ns) {
    return fmt::format("{}.{:09}", ns / kNsPerSecond, ns % kNsPerSecond);
}

/** Quotes a field that contains a separator, as RFC 4180 defines. */
std::string field(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
    std::string quoted = "\"";
    for (const char c : text)
        quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}

}  // namespace

void writeHintsCsv(const trace::Timeline& timeline, const replay::Recording& recording,
                   const replay::TimeWindow& window, std::ostream& out) {
    out << "time_s,trace_time_s,kind,layer,identifier,duration_ms,type,scale,direction,"
           "boost_level\n";
    for (size_t i = 0; i < recording.hints.size(); ++i) {
        const host::Hint& hint = recording.hints[i];
        if (!window.contains(hint.timeNs)) continue;
        const auto layer = static_cast<size_t>(recording.hintLayers[i]);
        fmt::print(out, "{},{},{},{},{},{},0x{:08x},", exactSeconds(hint.timeNs - timeline.startNs),
                   exactSeconds(hint.timeNs), hintWord(hint.kind),
                   field(timeline.layers[layer].name), hint.identifier, hint.durationMs, hint.type);
        if (host::hasScale(hint.kind)) {
            fmt::print(out, "{:.3f},{},{}\n", hint.scale, hint.direction, hint.boostLevel);
        } else {
            out << ",,\n";
        }
    }
}

}  // namespace brevold::report
