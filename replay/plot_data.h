#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "replay/player.h"
#include "trace/timeline.h"

namespace brevold::replay {

/** Seconds from the start of the trace, and a value; a value that is no number, a break between
 * two. */
struct PlotPoint {
    double timeS;
    double value;
};
using PlotPoints = std::vector<PlotPoint>;

/** A replay as the curves of a picture. */
struct PlotData {
    PlotPoints frameIntervalsMs;
    PlotPoints periodsMs;
    PlotPoints depths;
    PlotPoints downScales;  // from the begin to the end of each
    int32_t downs = 0;
    PlotPoints upScales;
    PlotPoints boosts;
    PlotPoints ratesHz;
    PlotPoints rateHintsHz;
    PlotPoints modes;
};

PlotData plotData(const trace::Timeline& timeline, const Recording& recording);

/**
 * Of each of so many columns of the time up to the end, at most the first, the last, the least and
 * the greatest point; breaks narrower than a column go. Steps through these cover the same pixels
 * as steps through all.
 */
PlotPoints thin(const PlotPoints& points, double endS, int32_t columns);

}  // namespace brevold::replay
