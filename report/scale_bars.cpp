#include "report/scale_bars.h"

#include <fmt/format.h>

#include <algorithm>

namespace brevold::report {

namespace {

constexpr const char* kBars[] = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr int64_t kHighestBar = std::size(kBars) - 1;

}  // namespace

std::string scaleBars(const RequestSummary& request, host::HintKind kind) {
    const ScaleBins* const bins = scaleBinsOf(kind);
    if (bins == nullptr) return {};
    const int64_t max = *std::max_element(request.scaleCounts.begin(), request.scaleCounts.end());
    std::string bars;
    for (const int64_t count : request.scaleCounts)
        bars += kBars[max == 0 ? 0 : (count * kHighestBar + max - 1) / max];
    const std::string end =
            kind == host::HintKind::Down ? "1" : fmt::format("{:g} and more", bins->back());
    return fmt::format("{:g} [{}] {}", bins->front(), bars, end);
}

}  // namespace brevold::report
