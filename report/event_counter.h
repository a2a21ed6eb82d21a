#pragma once

#include "replay/time_window.h"
#include "report/summary.h"
#include "trace/timeline.h"

namespace brevold::report {

/** Counts the events in a window, and follows the focus and the refresh rate to it. */
void countEvents(const trace::Timeline& timeline, const replay::TimeWindow& window,
                 Summary& summary);

}  // namespace brevold::report
