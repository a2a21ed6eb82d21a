#pragma once

#include <cstdint>
#include <vector>

#include "replay/hint.h"

namespace brevold::replay {

/** A hint and the time for which it holds. */
struct HintSpan {
    Hint hint;
    int64_t endNs;
};

/**
 * How long each hint holds: for its duration, or until the next of the same channel, or until the
 * end of the trace. DOWN and UP share a channel; a release ends its boost and has no span itself; a
 * refresh rate holds until the next.
 */
std::vector<HintSpan> hintSpans(const std::vector<Hint>& hints, int64_t traceEndNs);

}  // namespace brevold::replay
