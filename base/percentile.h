#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace brevold {

/**
 * Returns the smallest value that is not less than `percent` percent of the values (nearest rank),
 * or 0 without values. Reorders the values.
 */
template <typename T>
T percentile(std::vector<T>& values, double percent) {
    if (values.empty()) return T{};
    const double rank = std::ceil(percent / 100.0 * static_cast<double>(values.size()));
    const auto index = static_cast<ptrdiff_t>(std::max(rank, 1.0)) - 1;
    std::nth_element(values.begin(), values.begin() + index, values.end());
    return values[static_cast<size_t>(index)];
}

}  // namespace brevold
