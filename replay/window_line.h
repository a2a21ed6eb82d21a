#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "brevold/protocol.h"

namespace brevold::replay {

/** Returns the frame-rate mode if a log line reports a measuring window. */
inline std::optional<int32_t> modeOfWindowLine(const std::string& text) {
    int32_t mode = 0;
    if (sscanf(text.c_str(), BREVOLD_WINDOW_TAG, &mode) != 1) return std::nullopt;
    return mode;
}

}  // namespace brevold::replay
