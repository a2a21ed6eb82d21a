#pragma once

#include <ostream>

#include "sim/recorded_work.h"

namespace brevold::sim {

/**
 * Prints where the work of a recording was taken from, and how well the simulation fits it. `fit`
 * is Metric::RecordedLatchShare with the library off.
 */
void printRecording(const RecordedWork& recording, double fit, std::ostream& out);

}  // namespace brevold::sim
