#pragma once

#include <cstdint>
#include <string>

#include "host/perfd_client.h"

namespace brevold::replay {

enum class HintKind : uint8_t { Down, Up, JankBoost, Release, RefreshRate };
constexpr HintKind kHintKinds[] = {HintKind::Down, HintKind::Up, HintKind::JankBoost,
                                   HintKind::Release, HintKind::RefreshRate};

/** One request of the performance service. */
struct Hint {
    int64_t timeNs;
    HintKind kind;
    int32_t identifier;
    /** Milliseconds; 0 for a release and for a refresh rate, which hold until the next. */
    int32_t durationMs;
    /** The type word; of a release the boost count, of a refresh rate the rate in Hz. */
    uint32_t type;
    // What the type word of a scaling request or a boost packs; 0 in the other kinds.
    double scale;
    uint32_t direction;
    uint32_t boostLevel;
};

/** "DOWN", "UP", "jank boost", "release" or "refresh-rate". */
const char* nameOf(HintKind kind);

/** Whether the kind has a scale, a direction and a boost level. */
bool hasScale(HintKind kind);

/** For a reader: "DOWN 0.282", "release of 2", "refresh-rate 90". */
std::string describe(const Hint& hint);

/** Takes a call of perf_hint apart. The only place that knows how the words are packed. */
Hint decodeHint(const host::ServiceCall& call);

}  // namespace brevold::replay
