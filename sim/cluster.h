#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "sim/governor.h"
#include "sim/utilisation.h"

namespace brevold::sim {

constexpr int64_t kNever = std::numeric_limits<int64_t>::max();

/** Tasks, each with a core of its own in the cluster where it runs. */
enum class Task : uint8_t { App, Compositor };
constexpr size_t kTaskCount = 2;

/**
 * A cluster of cores with one common frequency. Work proceeds at a piecewise-constant speed, so the
 * time of its completion is exact. Times are nanoseconds and must not decrease.
 */
class Cluster {
  public:
    Cluster(const ClusterSpec& spec, const GovernorSpec& governor, std::optional<size_t> heldPoint);

    const ClusterSpec& spec() const { return mSpec; }
    bool isBusy() const;

    /** Starts work, in nanoseconds at the maximum frequency, on the core of an idle task. */
    void start(Task task, int64_t workNs, int64_t nowNs);

    /** When the task's work will be done if the frequency stays as it is; kNever if it is idle. */
    int64_t completionNs(Task task) const;

    /** Ends the task's work. Call it at completionNs(). */
    void finish(Task task, int64_t nowNs);

    /** The mean frequency during the task's last work; the current one if that took no time. */
    double meanMhz(Task task) const;

    /** Lets the governor choose again. */
    void evaluateGovernor(int64_t nowNs);
    size_t governorPoint() const { return mGovernor.point(); }

    /** The operating point in effect: the governor's unless the service changes it. */
    size_t point() const { return mPoint; }
    void setPoint(size_t point, int64_t nowNs);

    /** Restarts the measurement of energy. */
    void restartEnergy(int64_t nowNs);

    /** Energy since restartEnergy() in millijoules. */
    double energyMj(int64_t nowNs);

  private:
    struct Core {
        explicit Core(const GovernorSpec& spec) : utilisation(spec) {}

        bool isBusy = false;
        double remainingNs = 0.0;  // of work, at the maximum frequency
        // Of this work or the last.
        double elapsedNs = 0.0;
        double mhzNs = 0.0;  // integral of the frequency
        Utilisation utilisation;
    };

    Core& core(Task task) { return mCores[static_cast<size_t>(task)]; }
    const Core& core(Task task) const { return mCores[static_cast<size_t>(task)]; }
    void advance(int64_t nowNs);

    const ClusterSpec& mSpec;
    Governor mGovernor;
    std::vector<Core> mCores;
    size_t mPoint;
    double mSpeed;
    int64_t mNowNs = 0;
    int64_t mEnergyStartNs = 0;
    std::vector<int64_t> mBusyNs;  // of all cores, by operating point
};

}  // namespace brevold::sim
