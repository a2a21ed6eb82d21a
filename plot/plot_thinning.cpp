#include "plot/plot_thinning.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brevold::plot {

namespace {

/** Appends the points to keep of one column, which must not contain a break. */
void keepExtremes(const PlotPoint* first, const PlotPoint* end, PlotPoints* kept) {
    const auto byValue = [](const PlotPoint& a, const PlotPoint& b) { return a.value < b.value; };
    const auto [min, max] = std::minmax_element(first, end, byValue);
    const PlotPoint* last = nullptr;
    for (const PlotPoint* point : {first, std::min(min, max), std::max(min, max), end - 1}) {
        if (point != last) kept->push_back(*point);
        last = point;
    }
}

}  // namespace

PlotPoints thin(const PlotPoints& points, double beginS, double endS, int32_t columns) {
    const double columnS = std::max((endS - beginS) / columns, std::numeric_limits<double>::min());
    const auto columnOf = [&](const PlotPoint& point) {
        return std::floor((point.timeS - beginS) / columnS);
    };
    PlotPoints joined;
    for (size_t i = 0; i < points.size(); ++i) {
        const bool isBreak = std::isnan(points[i].value);
        if (isBreak && points[i + 1].timeS - points[i - 1].timeS < columnS) continue;
        joined.push_back(points[i]);
    }
    PlotPoints kept;
    for (size_t first = 0; first < joined.size();) {
        size_t end = first + 1;
        if (!std::isnan(joined[first].value)) {
            while (end < joined.size() && !std::isnan(joined[end].value) &&
                   columnOf(joined[end]) == columnOf(joined[first])) {
                ++end;
            }
        }
        keepExtremes(&joined[first], &joined[first] + (end - first), &kept);
        first = end;
    }
    return kept;
}

}  // namespace brevold::plot
