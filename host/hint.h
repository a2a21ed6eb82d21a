#pragma once

#include <cstdint>
#include <string>

#include "host/fake_perf_client.h"

namespace brevold::host {

enum class HintKind : uint8_t { Down, Up, JankBoost, Release, RefreshRate };
constexpr HintKind kHintKinds[] = {HintKind::Down, HintKind::Up, HintKind::JankBoost,
                                   HintKind::Release, HintKind::RefreshRate};

/** A hint to the performance service. */
struct Hint {
    /** Nanoseconds of systemTime's monotonic clock. */
    int64_t timeNs;
    HintKind kind;
    int32_t identifier;
    /** Milliseconds; 0 for a release and for a refresh rate, which have no expiry. */
    int32_t durationMs;
    /** The type word; for a release, the boost count; for a refresh rate, the rate in Hz. */
    uint32_t type;
    // Unpacked from the type word; 0 for a release and for a refresh rate.
    double scale;
    uint32_t direction;
    uint32_t boostLevel;
};

/** Returns "DOWN", "UP", "jank boost", "release" or "refresh-rate". */
const char* nameOf(HintKind kind);

/** Returns true if hints of this kind carry a scale, a direction and a boost level. */
bool hasScale(HintKind kind);

/** Formats a hint for display: "DOWN 0.282", "release of 2", "refresh-rate 90". */
std::string describe(const Hint& hint);

/** Decodes a call of perf_hint. */
Hint decodeHint(const ServiceCall& call);

}  // namespace brevold::host
