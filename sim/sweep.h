#pragma once

#include <vector>

#include "sim/experiment.h"

namespace brevold::sim {

enum class Sweep : uint8_t {
    Service,     // each reading of DOWN with each target of a boost
    Governor,    // each governor
    Buffers,     // 2 to 4 buffers
    BoostDepth,  // both depths
};
extern const Words<Sweep> kSweepWords;

/** Varies a setup that has one reading. */
std::vector<Setup> sweepSetups(const Setup& setup, Sweep sweep);

}  // namespace brevold::sim
