#pragma once

#include <ostream>
#include <string>

#include "trace/timeline.h"

namespace brevold::report {

/**
 * Prints the layers of a trace that have frames, in descending order of frames, with the times of
 * their first and last frame since the start of the trace. Names those that get the focus.
 */
void printLayerList(const std::string& trace, const trace::Timeline& timeline, std::ostream& out);

}  // namespace brevold::report
