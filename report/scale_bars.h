#pragma once

#include <string>

#include "report/request_summary.h"

namespace brevold::report {

/**
 * Returns the distribution of scales as one bar for each bin, between the ends of the bins:
 * "0 [  ▁▃█▆▂   ] 1". The highest bar is the bin with the most requests; empty bins have none.
 * Returns an empty text for a kind without bins.
 */
std::string scaleBars(const RequestSummary& request, host::HintKind kind);

}  // namespace brevold::report
