#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "host/hint.h"
#include "sim/buffer_queue.h"
#include "sim/cluster.h"
#include "sim/service.h"

namespace brevold::sim {

/**
 * Follows a simulation. Calls come in time order; times are nanoseconds. Override the calls of
 * interest.
 */
class Observer {
  public:
    virtual ~Observer() = default;

    /** The warm-up is over. */
    virtual void onMeasurementStart(int64_t /*nowNs*/) {}
    virtual void onVsync(int64_t /*nowNs*/) {}
    /** A task starts or ends its work on `cluster`. */
    virtual void onTask(int64_t /*nowNs*/, Task /*task*/, size_t /*cluster*/, bool /*isBusy*/) {}
    virtual void onFrequency(int64_t /*nowNs*/, size_t /*cluster*/, const OperatingPoint&) {}
    /** `depth` includes the frame. */
    virtual void onQueue(int64_t /*nowNs*/, const Frame&, int32_t /*depth*/) {}
    /** A composition begins with the latch of a frame; `depth` is without it. */
    virtual void onLatch(int64_t /*nowNs*/, const Frame&, int32_t /*depth*/) {}
    virtual void onCompositionEnd(int64_t /*nowNs*/) {}
    /** The frame becomes visible at this vsync, which may be later than now. */
    virtual void onShow(int64_t /*vsyncNs*/, const Frame&) {}
    virtual void onHint(const host::Hint&) {}
    /** A hint took effect or ended. */
    virtual void onService(int64_t /*nowNs*/, const Service&) {}
    /** The frame-rate mode at a composition; none if it is not reported. */
    virtual void onMode(int64_t /*nowNs*/, std::optional<int32_t> /*mode*/) {}
    /** The end of the simulation. */
    virtual void onEnd(int64_t /*nowNs*/) {}
};

}  // namespace brevold::sim
