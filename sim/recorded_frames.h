#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "sim/cluster.h"
#include "trace/timeline.h"

namespace brevold::sim {

/** A frame of a recording. Times are the recording's, in nanoseconds. */
struct QueuedFrame {
    int64_t queuedNs;
    int32_t depth;                 // of the queue, with this frame
    int64_t nextLatchNs = kNever;  // the first latch of any frame of the layer after queuedNs
    int64_t latchedNs = kNever;    // kNever if it is not
};

/** The frames of one layer while the refresh period is constant. */
struct QueuedFrames {
    std::string layer;
    int64_t periodNs;
    std::vector<QueuedFrame> frames;
    std::vector<int64_t> latchesNs;

    int64_t beginNs() const { return frames.front().queuedNs; }
    int64_t endNs() const { return frames.back().queuedNs; }
};

/**
 * Returns the frames of the layer in focus during the refresh period with most of them. Throws
 * InputError, with a message that begins with `name`, if these are fewer than two.
 */
QueuedFrames queuedFrames(const trace::Timeline& timeline, const std::string& name);

/**
 * The vsyncs of a recording, found from the latches of one layer, as vsyncs of a simulation. They
 * have exactly the period in a simulation, so times are relative to the latch before them.
 */
class RecordedVsyncs {
  public:
    /** `latchNs` is the time from a simulated vsync to its latch. */
    RecordedVsyncs(const QueuedFrames& frames, int64_t latchNs);

    /** The index of the vsync of a latch of the frames. */
    int64_t indexOf(int64_t latchedNs) const;
    /** A time of the recording as nanoseconds since the vsync with index 0. */
    int64_t simulated(int64_t timeNs) const;
    /** The first vsync whose latch is at or after a simulated time. */
    int64_t firstLatchAt(int64_t simulatedNs) const;

  private:
    struct Latch {
        int64_t timeNs;
        int64_t index;
    };

    const Latch& lastLatch(int64_t timeNs) const;

    const int64_t mPeriodNs;
    const int64_t mLatchNs;
    std::vector<Latch> mLatches;
};

}  // namespace brevold::sim
