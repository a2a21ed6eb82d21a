#pragma once

#include <cstdint>

namespace brevold {

constexpr int64_t kNsPerMs = 1'000'000;
constexpr int64_t kNsPerSecond = 1'000'000'000;
/** Differences of times have to fit into 64 bits. */
constexpr int64_t kMaxTimeNs = 9'000'000'000'000'000'000;

inline double toMs(int64_t ns) {
    return static_cast<double>(ns) / 1e6;
}

inline double toSeconds(int64_t ns) {
    return static_cast<double>(ns) / 1e9;
}

}  // namespace brevold
