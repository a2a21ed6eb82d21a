#pragma once

#include <cstdint>
#include <vector>

#include "host/hint.h"

namespace brevold::replay {

/** What a hint acts on: DOWN and UP; jank boost and release; refresh rate. */
enum class Channel : uint8_t { Qb, Sf, Display };
constexpr Channel kChannels[] = {Channel::Qb, Channel::Sf, Channel::Display};

Channel channelOf(host::HintKind kind);

/** A hint and the time for which it holds. */
struct HintSpan {
    host::Hint hint;
    int64_t endNs;
};

/**
 * How long each hint holds: for its duration, or until the next of the same channel, or until the
 * end of the trace. A release ends its boost and has no span itself; a refresh rate holds until the
 * next.
 */
std::vector<HintSpan> hintSpans(const std::vector<host::Hint>& hints, int64_t traceEndNs);

}  // namespace brevold::replay
