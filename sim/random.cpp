#include "sim/random.h"

#include <cmath>

#include "sim/exact_math.h"

namespace brevold::sim {

namespace {

/** The output function of SplitMix64. */
uint64_t mix(uint64_t value) {
    value += 0x9e3779b97f4a7c15;
    value = (value ^ value >> 30) * 0xbf58476d1ce4e5b9;
    value = (value ^ value >> 27) * 0x94d049bb133111eb;
    return value ^ value >> 31;
}

uint64_t hash(uint64_t seed, Stream stream, uint64_t index) {
    return mix(mix(mix(seed) + static_cast<uint64_t>(stream)) + index);
}

double toUnit(uint64_t bits) {
    return static_cast<double>(bits >> 11) * 0x1p-53;
}

}  // namespace

double Random::uniform(Stream stream, uint64_t index) const {
    return toUnit(hash(mSeed, stream, index));
}

double Random::normal(Stream stream, uint64_t index) const {
    // Marsaglia's polar method; rejected pairs continue a sequence of this index alone.
    uint64_t bits = hash(mSeed, stream, index);
    for (;;) {
        const double a = 2.0 * toUnit(bits = mix(bits)) - 1.0;
        const double b = 2.0 * toUnit(bits = mix(bits)) - 1.0;
        const double square = a * a + b * b;
        if (square > 0.0 && square < 1.0) return a * std::sqrt(-2.0 * logExact(square) / square);
    }
}

}  // namespace brevold::sim
