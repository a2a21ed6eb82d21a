#include "sim/buffer_queue.h"

#include <algorithm>

namespace brevold::sim {

void BufferQueue::queue(Frame frame, int64_t nowNs) {
    frame.queuedNs = nowNs;
    mGpuEndNs = std::max(mGpuEndNs, nowNs) + frame.gpuNs;
    frame.readyNs = mGpuEndNs;
    mQueued.push_back(frame);
}

std::optional<Frame> BufferQueue::latch(int64_t nowNs, int64_t vsyncNs) {
    if (mQueued.empty() || mQueued.front().readyNs > nowNs || mQueued.front().dueNs > vsyncNs) {
        return {};
    }
    const Frame frame = mQueued.front();
    mQueued.pop_front();
    if (mIsOnDisplay) ++mFree;
    mIsOnDisplay = true;
    return frame;
}

}  // namespace brevold::sim
