#pragma once

#include <cstdint>

#include "plot/plot_data.h"

namespace brevold::plot {

/**
 * Thins a curve over `columns` pixel columns from `beginS` to `endS` seconds. Keeps the first,
 * last, minimum and maximum point of each column, and drops breaks narrower than a column. Drawn as
 * steps, the result covers the same pixels as all points.
 */
PlotPoints thin(const PlotPoints& points, double beginS, double endS, int32_t columns);

}  // namespace brevold::plot
