#pragma once

#include <cstdint>
#include <vector>

namespace brevold::verify {

struct Latency {
    int64_t atNs;  // the beginning
    int64_t lengthNs;
};

/** Statistics of latencies; all 0 if there are none. Percentiles are latencies that occurred. */
struct LatencySummary {
    int64_t count = 0;
    int64_t medianNs = 0;
    int64_t percentile95Ns = 0;
    int64_t percentile99Ns = 0;
    int64_t maxNs = 0;
    int64_t maxAtNs = 0;
};

LatencySummary summarise(std::vector<Latency> latencies);

}  // namespace brevold::verify
