#pragma once

#include <ostream>

#include "verify/verification.h"

namespace brevold::verify {

/**
 * Writes one JSON object: "version", which changes with the name or meaning of any field, and
 * "verification". Times are seconds since the start of the trace, latencies are milliseconds.
 */
void printJson(const Verification& verification, std::ostream& out);

}  // namespace brevold::verify
