#pragma once

#include <cstdint>
#include <vector>

#include "verify/differences.h"

namespace brevold::verify {

/** The differences of one subject with the same causes. */
struct CauseRow {
    Subject subject;
    CauseSet causes;
    int64_t count = 0;
    int64_t earlyCount = 0;
    std::vector<int64_t> firstTimesNs;  // at most three
};

/** Groups differences; those with the most of them come first. */
std::vector<CauseRow> causeTable(const std::vector<Difference>& differences);

}  // namespace brevold::verify
