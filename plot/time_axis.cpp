#include "plot/time_axis.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "plot/plot_text.h"

namespace brevold::plot {

TimeAxis timeAxis(double beginS, double endS) {
    constexpr double kMaxSteps = 12;
    const TimeUnit& unit = timeUnitOf(std::max(endS - beginS, 1.0));
    const double minStep = (endS - beginS) / unit.seconds / kMaxSteps;
    const double power = std::pow(10, std::floor(std::log10(minStep)));
    double step = 10 * power;
    for (const double factor : {5.0, 2.0, 1.0}) {
        if (factor * power >= minStep) step = factor * power;
    }
    // The tolerance is for ends that are multiples of the step but for rounding.
    constexpr double kTolerance = 1e-6;
    const int digits = std::max(0, -static_cast<int>(std::floor(std::log10(step) + kTolerance)));
    const double stepS = step * unit.seconds;
    const auto first = static_cast<int64_t>(std::ceil(beginS / stepS - kTolerance));
    const auto last = static_cast<int64_t>(std::floor(endS / stepS + kTolerance));
    TimeAxis axis = {unit.name, {}};
    for (int64_t i = first; i <= last; ++i) {
        const auto multiple = static_cast<double>(i);
        axis.ticks.push_back({multiple * stepS, fmt::format("{:.{}f}", multiple * step, digits)});
    }
    return axis;
}

}  // namespace brevold::plot
