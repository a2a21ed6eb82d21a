#pragma once

#include <ostream>

#include "verify/verification.h"

namespace brevold::verify {

/** Prints a verification. Times are seconds since the start of the trace. */
void print(const Verification& verification, std::ostream& out);

}  // namespace brevold::verify
