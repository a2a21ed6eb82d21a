#include "report/hints_csv.h"

#include <fmt/ostream.h>

namespace brevold::report {

namespace {

constexpr int64_t kNsPerSecond = 1000000000;

}  // namespace

void writeHintsCsv(const std::vector<host::Hint>& hints, const replay::TimeWindow& window,
                   std::ostream& out) {
    out << "time_s,kind,identifier,duration_ms,type,scale,direction,boost_level\n";
    for (const host::Hint& hint : hints) {
        if (!window.contains(hint.timeNs)) continue;
        fmt::print(out, "{}.{:09},{},{},{},0x{:08x},", hint.timeNs / kNsPerSecond,
                   hint.timeNs % kNsPerSecond, host::nameOf(hint.kind), hint.identifier,
                   hint.durationMs, hint.type);
        if (host::hasScale(hint.kind)) {
            fmt::print(out, "{:.3f},{},{}\n", hint.scale, hint.direction, hint.boostLevel);
        } else {
            out << ",,\n";
        }
    }
}

}  // namespace brevold::report
