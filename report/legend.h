#pragma once

#include <cstdint>

namespace brevold::report {

enum class Block : uint8_t { Trace, Requests, Frames, Modes, Log };

/** Returns the lines that explain a block of the summary. */
const char* legendOf(Block block);

}  // namespace brevold::report
