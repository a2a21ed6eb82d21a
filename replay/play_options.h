#pragma once

#include <cstdint>

namespace brevold::replay {

/** The number of queued frames that the compositor passes to brevoldScaling. */
enum class BoostDepth : uint8_t {
    Left,   // the frames that are queued at the call
    Found,  // the maximum since the previous call; a compositor that counts before it latches
};

/** How a timeline is played. */
struct PlayOptions {
    BoostDepth boostDepth = BoostDepth::Left;
    /** False leaves Recording::marks empty, which saves memory. */
    bool hasMarks = true;
};

}  // namespace brevold::replay
