#pragma once

#include <array>
#include <cstdint>
#include <ostream>

#include "sim/device.h"
#include "sim/observer.h"

namespace brevold::sim {

/**
 * Writes a simulation as ftrace text: vsyncs, queue depth, compositions, the application's calls of
 * its buffer queue, the threads that run and the frequency of each cluster. Times have nanoseconds,
 * so a replay of the trace gives the same hints, and --trace the same work. A task runs on the
 * first processor of its cluster; if they share one, the application has the second.
 */
class TraceWriter : public Observer {
  public:
    TraceWriter(const Device& device, int64_t periodNs, std::ostream& out);

    void onVsync(int64_t nowNs) override;
    void onTask(int64_t nowNs, Task task, size_t cluster, bool isBusy) override;
    void onFrequency(int64_t nowNs, size_t cluster, const OperatingPoint& point) override;
    void onQueue(int64_t nowNs, const Frame& frame, int32_t depth) override;
    void onLatch(int64_t nowNs, const Frame& frame, int32_t depth) override;
    void onCompositionEnd(int64_t nowNs) override;

  private:
    struct Thread {
        const char* name;
        int process;
        int tid;
    };

    int cpuOf(Task task) const;
    void line(int64_t nowNs, const Thread& thread, int cpu, const std::string& event);
    void call(int64_t nowNs, const char* function);
    void mark(int64_t nowNs, const Thread& thread, const std::string& text);
    void depth(int64_t nowNs, const Thread& thread, int32_t depth);

    static const Thread kIdle;
    static const Thread kApp;
    static const Thread kCompositor;
    static const Thread kBinder;
    static const Thread kVsync;

    const Device& mDevice;
    std::ostream& mOut;
    bool mVsyncValue = false;
};

}  // namespace brevold::sim
