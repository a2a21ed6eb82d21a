#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

#include "host/hint.h"
#include "replay/hint_span.h"
#include "replay/time_window.h"

namespace brevold::report {

constexpr size_t kScaleBins = 10;
using ScaleBins = std::array<double, kScaleBins>;

// The lower ends of the bins in which scales are counted. The last bin has no upper end.
constexpr ScaleBins kDownBins = {0.0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9};
constexpr ScaleBins kUpBins = {1.0, 1.5, 2.0, 3.0, 4.0, 6.0, 8.0, 12.0, 16.0, 24.0};

/** Returns the bins of a kind, or null if its scale is constant or it carries none. */
const ScaleBins* scaleBinsOf(host::HintKind kind);

/** The requests of one kind. Scales are 0 without requests and for kinds that carry none. */
struct RequestSummary {
    int32_t count = 0;
    double minScale = 0.0;
    double meanScale = 0.0;
    double maxScale = 0.0;
    double p05Scale = 0.0;
    double p50Scale = 0.0;
    double p95Scale = 0.0;
    /** For DOWN: the requests at scale 0, which a negative headroom gives. */
    int32_t zeroScales = 0;
    /** By the bins of scaleBinsOf(). */
    std::array<int32_t, kScaleBins> scaleCounts = {};
    /** The time during which a request of this kind holds; see replay::HintSpan. */
    int64_t heldNs = 0;
    /** Mean scale over that time. */
    double meanHeldScale = 0.0;
};

/** In the order of host::kHintKinds. */
using RequestSummaries = std::array<RequestSummary, std::size(host::kHintKinds)>;

/** Counts the hints in a window, and the time in it that any of the spans cover. */
RequestSummaries summariseRequests(const std::vector<host::Hint>& hints,
                                   const std::vector<replay::HintSpan>& spans,
                                   const replay::TimeWindow& window);

}  // namespace brevold::report
