#pragma once

#include <cstdint>
#include <vector>

#include "plot/plot_data.h"

namespace brevold::plot {

/** Equal parts of a time axis. */
struct BinGrid {
    double beginS;
    double endS;
    int32_t count;

    double widthS() const { return (endS - beginS) / count; }
};

/** The distribution of a curve's values in a part of the time axis. */
struct Bin {
    double fromS;
    double toS;
    double min;
    double percentile5;
    double median;
    double percentile95;
    double max;
    double mean;
    /** The number of points, or the seconds covered by spans. */
    double weight;
};

/** Returns the bins with points, in time order. Points outside the grid count in its end bins. */
std::vector<Bin> binPoints(const PlotPoints& points, const BinGrid& grid);

/** Returns the bins that spans cover, in time order. A value weighs as much as the time it holds.
 */
std::vector<Bin> binSpans(const PlotSpans& spans, const BinGrid& grid);

}  // namespace brevold::plot
