#pragma once

#include <cstdint>
#include <vector>

#include "sim/device.h"
#include "sim/work_curve.h"
#include "trace/activity.h"

namespace brevold::sim {

/**
 * The speed of the processors in a recording, as a share of the maximum speed of the application's
 * cluster. Where the recording has no frequencies, or the device file does not name the processor's
 * cluster, it is Device::recordedSpeed.
 */
class RecordedSpeed {
  public:
    /** The arguments must outlive this object. */
    RecordedSpeed(const Device& device, const std::vector<trace::Activity::Frequency>& frequencies);

    /** Adds a span in which a thread runs on `processor`. */
    void addRun(int32_t processor, int64_t beginNs, int64_t endNs, WorkCurve* curve);
    /** Adds a span in which a thread runs on the application's cluster. */
    void addAppRun(int64_t beginNs, int64_t endNs, WorkCurve* curve);

    /** Returns true if a span was added whose speed is not known. */
    bool hasAssumed() const { return mHasAssumed; }

  private:
    struct Change {
        int64_t timeNs;
        double speed;
    };

    void addRun(const std::vector<Change>& changes, int64_t beginNs, int64_t endNs,
                WorkCurve* curve);

    const Device& mDevice;
    std::vector<std::vector<Change>> mChanges;  // by cluster
    bool mHasAssumed = false;
};

}  // namespace brevold::sim
