#include "report/warning_json.h"

#include <nlohmann/json.hpp>

#include "base/time_units.h"
#include "report/labels.h"

namespace brevold::report {

nlohmann::ordered_json warningOf(const trace::TraceWarning& warning) {
    using Kind = trace::TraceWarning::Kind;
    nlohmann::ordered_json object = {{"kind", warningWord(warning.kind)},
                                     {"count", warning.lines.lines}};
    if (warning.lines.firstLine != 0) object["first_line"] = warning.lines.firstLine;
    if (warning.kind == Kind::RingOverrun) object["whole_from_s"] = toSeconds(warning.wholeFromNs);
    if (warning.kind == Kind::OtherCompositor) {
        object["pid"] = warning.pid;
        object["other_pid"] = warning.otherPid;
    }
    return object;
}

}  // namespace brevold::report
