#pragma once

#include <cstdint>

namespace brevold::report {

/** If shown, a legend explains the terms of each block below it. */
enum class Legend : uint8_t { Hidden, Shown };

enum class Block : uint8_t { Trace, Requests, Frames, Modes, Log, Rows };

/** Returns the lines that explain a block of the summary. */
const char* legendOf(Block block);

}  // namespace brevold::report
