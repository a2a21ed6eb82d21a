#pragma once

#include <cstdint>

namespace brevold::sim {

/** Independent sequences of random numbers. */
enum class Stream : uint8_t {
    Work,
    SpikeChance,
    SpikeFactor,
    PhaseLength,
    PhaseFactor,
    GpuWork,
    BurstLength,
    GapLength,
};

/**
 * Random numbers as a function of seed, stream and index, so that two runs of one seed meet the
 * same work whatever order they ask in. The same bits on every platform.
 */
class Random {
  public:
    explicit Random(uint64_t seed) : mSeed(seed) {}

    /** Uniform in [0, 1). */
    double uniform(Stream stream, uint64_t index) const;

    /** Uniform in [from, to). */
    double uniform(Stream stream, uint64_t index, double from, double to) const {
        return from + (to - from) * uniform(stream, index);
    }

    /** Normal with mean 0 and standard deviation 1. */
    double normal(Stream stream, uint64_t index) const;

  private:
    const uint64_t mSeed;
};

}  // namespace brevold::sim
