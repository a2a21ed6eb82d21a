#pragma once

#include <cstdint>

#include "sim/device.h"

namespace brevold::sim {

/**
 * The utilisation of one core as the kernel tracks it, in closed form: a share of the core's
 * maximum capacity that rises to 1 while the core is busy and falls to 0 while it is idle, with
 * one half-life. Busy time is weighted by the frequency share, so a task of given work raises it
 * equally at every frequency.
 */
class Utilisation {
  public:
    explicit Utilisation(const GovernorSpec& spec) : mSpec(spec) {}

    void runFor(double ns, double frequencyShare);
    void idleFor(double ns);

    void wakeUp() { mIsRunning = true; }
    /** Also updates the estimate for the next wake-up. */
    void sleep();

    /** As the governor sees it; includes the estimate while the task runs. */
    double value() const;

  private:
    double remainder(double ns) const;

    const GovernorSpec& mSpec;
    bool mIsRunning = false;
    double mValue = 0.0;
    double mLastAtSleep = 0.0;
    double mAverageAtSleep = 0.0;
};

}  // namespace brevold::sim
