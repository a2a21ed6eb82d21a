#include "verify/latency.h"

#include <algorithm>
#include <cstddef>
#include <tuple>

namespace brevold::verify {

LatencySummary summarise(std::vector<Latency> latencies) {
    if (latencies.empty()) return {};
    // Of equal lengths, the first in the trace is the last, so that it is the maximum.
    std::sort(latencies.begin(), latencies.end(), [](const Latency& a, const Latency& b) {
        return std::tie(a.lengthNs, b.atNs) < std::tie(b.lengthNs, a.atNs);
    });
    const auto percentile = [&](size_t percent) {
        const size_t rank = (latencies.size() * percent + 99) / 100;
        return latencies[rank - 1].lengthNs;
    };
    return {static_cast<int64_t>(latencies.size()),
            percentile(50),
            percentile(95),
            percentile(99),
            latencies.back().lengthNs,
            latencies.back().atNs};
}

}  // namespace brevold::verify
