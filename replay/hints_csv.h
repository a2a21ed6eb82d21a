#pragma once

#include <ostream>
#include <vector>

#include "host/hint.h"

namespace brevold::replay {

/**
 * Writes hints as CSV with a header line: time in seconds of the trace's clock, kind, identifier,
 * duration in milliseconds, type word; then scale, direction and boost level, which are empty where
 * the kind has none.
 */
void writeHintsCsv(const std::vector<host::Hint>& hints, std::ostream& out);

}  // namespace brevold::replay
