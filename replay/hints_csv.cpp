#include "replay/hints_csv.h"

#include <cinttypes>

#include "base/text.h"

namespace brevold::replay {

namespace {

constexpr int64_t kNsPerSecond = 1000000000;

}  // namespace

void writeHintsCsv(const std::vector<host::Hint>& hints, std::ostream& out) {
    out << "time_s,kind,identifier,duration_ms,type,scale,direction,boost_level\n";
    for (const host::Hint& hint : hints) {
        out << format("%" PRId64 ".%09" PRId64 ",%s,%d,%d,0x%08x,", hint.timeNs / kNsPerSecond,
                      hint.timeNs % kNsPerSecond, host::nameOf(hint.kind), hint.identifier,
                      hint.durationMs, hint.type)
            << (host::hasScale(hint.kind)
                        ? format("%.3f,%u,%u\n", hint.scale, hint.direction, hint.boostLevel)
                        : ",,\n");
    }
}

}  // namespace brevold::replay
