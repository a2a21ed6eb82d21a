#pragma once

#include <cstdint>
#include <deque>
#include <optional>

namespace brevold::sim {

/** One frame on its way from the application to the display. Times in nanoseconds. */
struct Frame {
    int64_t beginNs = 0;
    int64_t workNs = 0;
    int64_t gpuNs = 0;
    int64_t dueNs = 0;            // not latched before this vsync
    int64_t recordedVsyncNs = 0;  // of its latch in a recording; 0 if unknown
    int64_t queuedNs = 0;
    int64_t readyNs = 0;  // the GPU has finished
};

/**
 * The layer's buffers: each is free, dequeued by the application, queued, or on the display, which
 * holds one from the first latch on.
 */
class BufferQueue {
  public:
    explicit BufferQueue(int32_t buffers) : mFree(buffers) {}

    bool hasFreeBuffer() const { return mFree > 0; }
    int32_t depth() const { return static_cast<int32_t>(mQueued.size()); }

    void dequeue() { --mFree; }

    /** The GPU works on frames one after another, from the time that they are queued. */
    void queue(Frame frame, int64_t nowNs);

    /** Latches the oldest frame if it is ready and due at `vsyncNs`. */
    std::optional<Frame> latch(int64_t nowNs, int64_t vsyncNs);

  private:
    int32_t mFree;
    bool mIsOnDisplay = false;
    int64_t mGpuEndNs = 0;
    std::deque<Frame> mQueued;
};

}  // namespace brevold::sim
