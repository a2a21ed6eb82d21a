#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "replay/player.h"
#include "replay/summary.h"

namespace brevold::replay {

/** A moment at which two replays of one trace asked for different things, or judged differently. */
struct Parting {
    int64_t timeNs;
    std::string first;
    std::string second;
};

/** The first such moments, at most that many. */
std::vector<Parting> firstPartings(const Recording& first, const Recording& second, size_t most);

/** Both replays' figures, their difference, and the first moments at which they part. */
void printComparison(const Summary& first, const Summary& second,
                     const std::vector<Parting>& partings, int64_t traceStartNs, std::ostream& out);

}  // namespace brevold::replay
