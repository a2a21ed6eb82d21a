#include "sim/utilisation.h"

#include <algorithm>

#include "sim/exact_math.h"

namespace brevold::sim {

namespace {

constexpr double kAverageStep = 0.25;
// Beyond this many half-lives nothing is left.
constexpr double kMaxHalfLives = 100.0;

}  // namespace

void Utilisation::runFor(double ns, double frequencyShare) {
    mValue = 1.0 - (1.0 - mValue) * remainder(ns * frequencyShare);
}

void Utilisation::idleFor(double ns) {
    mValue *= remainder(ns);
}

void Utilisation::sleep() {
    mIsRunning = false;
    mLastAtSleep = mValue;
    // Rises at once, falls by steps.
    mAverageAtSleep = std::max(mValue, mAverageAtSleep + (mValue - mAverageAtSleep) * kAverageStep);
}

double Utilisation::value() const {
    if (!mIsRunning || !mSpec.hasUtilEst) return mValue;
    return std::max({mValue, mLastAtSleep, mAverageAtSleep});
}

double Utilisation::remainder(double ns) const {
    return exp2Exact(-std::min(ns / static_cast<double>(mSpec.halfLifeNs), kMaxHalfLives));
}

}  // namespace brevold::sim
