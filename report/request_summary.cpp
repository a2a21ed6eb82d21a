#include "report/request_summary.h"

#include <algorithm>
#include <numeric>

#include "base/percentile.h"
#include "base/time_units.h"

namespace brevold::report {

namespace {

void addScales(std::vector<double>& scales, const ScaleBins* bins, RequestSummary& request) {
    const auto [min, max] = std::minmax_element(scales.begin(), scales.end());
    request.minScale = *min;
    request.maxScale = *max;
    request.meanScale = std::accumulate(scales.begin(), scales.end(), 0.0) / request.count;
    request.p05Scale = percentile(scales, 5.0);
    request.p50Scale = percentile(scales, 50.0);
    request.p95Scale = percentile(scales, 95.0);
    if (bins == nullptr) return;
    for (const double scale : scales) {
        request.zeroScales += scale == 0.0 ? 1 : 0;
        const auto next = std::upper_bound(bins->begin() + 1, bins->end(), scale);
        ++request.scaleCounts[static_cast<size_t>(next - bins->begin()) - 1];
    }
}

}  // namespace

const ScaleBins* scaleBinsOf(host::HintKind kind) {
    switch (kind) {
        case host::HintKind::Down:
            return &kDownBins;
        case host::HintKind::Up:
            return &kUpBins;
        default:
            return nullptr;
    }
}

RequestSummaries summariseRequests(const std::vector<host::Hint>& hints,
                                   const std::vector<replay::HintSpan>& spans,
                                   const replay::TimeWindow& window) {
    RequestSummaries requests = {};
    for (const host::HintKind kind : host::kHintKinds) {
        RequestSummary& request = requests[static_cast<size_t>(kind)];
        std::vector<double> scales;
        for (const host::Hint& hint : hints) {
            if (hint.kind == kind && window.contains(hint.timeNs)) scales.push_back(hint.scale);
        }
        request.count = static_cast<int32_t>(scales.size());
        if (host::hasScale(kind) && !scales.empty()) addScales(scales, scaleBinsOf(kind), request);
    }
    for (const replay::HintSpan& span : spans) {
        RequestSummary& request = requests[static_cast<size_t>(span.hint.kind)];
        const int64_t heldNs = window.clamp(span.endNs) - window.clamp(span.hint.timeNs);
        request.heldNs += heldNs;
        request.meanHeldScale += span.hint.scale * toSeconds(heldNs);
    }
    for (RequestSummary& request : requests) {
        if (request.heldNs != 0) request.meanHeldScale /= toSeconds(request.heldNs);
    }
    return requests;
}

}  // namespace brevold::report
