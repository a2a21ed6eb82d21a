#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "replay/recording.h"
#include "replay/time_window.h"

namespace brevold::replay {

/** The library's hints and verdicts at one time. */
struct Moment {
    std::vector<host::Hint> hints;
    /** Boost verdicts; two vsyncs may have the same stamp. */
    int32_t verdicts = 0;
};

/** A time at which two replays of one trace differ. */
struct Divergence {
    int64_t timeNs;
    Moment first;
    Moment second;
};

/** Returns the first divergences in a window in time order, at most `maxCount` of them. */
std::vector<Divergence> firstDivergences(const Recording& first, const Recording& second,
                                         const TimeWindow& window, size_t maxCount);

}  // namespace brevold::replay
