#pragma once

#include <string>
#include <vector>

namespace brevold::plot {

struct AxisTick {
    double value;
    std::string label;
};

struct TimeAxis {
    std::string unit;
    /** Values are seconds, labels are in the unit. */
    std::vector<AxisTick> ticks;
};

/**
 * Returns the ticks of a time axis: at most 13, at multiples of 1, 2 or 5 times a power of ten. The
 * unit is seconds, minutes or hours.
 */
TimeAxis timeAxis(double beginS, double endS);

}  // namespace brevold::plot
