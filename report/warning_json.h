#pragma once

#include <nlohmann/json_fwd.hpp>

#include "trace/trace_warning.h"

namespace brevold::report {

/** Returns the object of a warning in JSON outputs. */
nlohmann::ordered_json warningOf(const trace::TraceWarning& warning);

}  // namespace brevold::report
