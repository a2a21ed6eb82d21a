#pragma once

#include <cstdint>
#include <vector>

#include "host/hint.h"

namespace brevold::replay {

/** Hints of one channel replace each other: DOWN and UP; jank boost and release; refresh rate. */
enum class Channel : uint8_t { Qb, Sf, Display };
constexpr Channel kChannels[] = {Channel::Qb, Channel::Sf, Channel::Display};

Channel channelOf(host::HintKind kind);

/** A hint and the time until which it holds. */
struct HintSpan {
    host::Hint hint;
    int64_t endNs;
};

/**
 * Returns the spans of hints, in the order of the hints. A hint holds until its duration expires,
 * the next hint of its channel is sent, or the trace ends, whichever comes first. A release ends
 * its boost and has no span itself. A refresh rate has no duration.
 */
std::vector<HintSpan> hintSpans(const std::vector<host::Hint>& hints, int64_t traceEndNs);

}  // namespace brevold::replay
