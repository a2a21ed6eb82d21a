#pragma once

#include <ostream>

#include "sim/recorded_work.h"

namespace brevold::sim {

/**
 * Prints where the work of a recording was taken from, and how well the simulation fits it. The
 * shares are Metric::RecordedLatchShare and LateLatchShare with the library off.
 */
void printRecording(const RecordedWork& recording, double fit, double lateShare, std::ostream& out);

}  // namespace brevold::sim
