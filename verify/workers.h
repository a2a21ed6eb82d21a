#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "verify/differences.h"
#include "verify/latency.h"
#include "verify/library_marks.h"

namespace brevold::verify {

enum class LatencyKind : uint8_t {
    HandOver,      // from a decision to the worker's section
    RequestCall,   // the service's call for a DOWN or UP request
    BoostCall,     // for a boost
    ReleaseCall,   // for a release
    BoostHold,     // from a boost to its release
    ReporterWait,  // of the reporting thread for the worker
};
constexpr size_t kLatencyKindCount = 6;

using Latencies = std::array<LatencySummary, kLatencyKindCount>;

/** The replay and the trace to which the workers' sections belong. */
struct WorkerContext {
    const std::vector<int64_t>& compositionsNs;  // their beginnings
    int64_t periodNs;
    int64_t traceStartNs;
    int64_t traceEndNs;
    bool sendsDown;  // in the profile; if not, DOWN decisions post no requests
};

/** Checks that requests are sent in time and boosts released, and measures the latencies. */
Latencies checkWorkers(const LibraryMarks& marks, const WorkerContext& context,
                       Differences* differences);

}  // namespace brevold::verify
