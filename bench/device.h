#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "brevold/brevold.h"

/** The device that the benchmark runs on: the host's real clock and threads, stand-in services. */
namespace brevold::bench {

constexpr int64_t kPeriod60Ns = 16666666;
constexpr int64_t kPeriod90Ns = 11111111;
constexpr char kLayer[] = "SurfaceView - com.example.game/com.example.game.MainActivity#0";

enum class Channel { Sf, Qb };

/**
 * Initialises the library with every feature on and without debug output. The workers, and the
 * floor's, get a processor of their own where there are two: a worker woken on the caller's would
 * run before the caller goes on.
 */
void startDevice();

size_t processorCount();

/** Keeps the calling thread, and those that it starts, on one processor; counts round. */
void useProcessor(size_t index);

/** Initialises anew, with a debug layer list; the layers of earlier lists stay. */
void addDebugLayerSetting(const std::string& list);

/** Closes a frame-rate window of that interval between ticks; takes a second. */
void measureRate(int64_t intervalNs);

/** A report of a frame that decides nothing: one is queued, and it came in time. */
LayerFrameInfo frameOf(const std::string& layerName);

/** How long each call of the service takes. */
void setServiceDelayMs(int delayMs);

/** Scaling hints begun so far; when the last began; the worker that last sent one. */
int hintsBegun();
int64_t hintBegunNs();
bool isHintUnderWay();
pid_t workerOf(Channel channel);

/** Bytes of a worker's stack, reserved and ever used. */
struct StackBytes {
    size_t reserved;
    size_t used;
};
StackBytes stackOf(Channel channel);

/** Blocks until the condition holds, without giving up the processor. */
template <typename Condition>
void spinUntil(Condition condition) {
    while (!condition()) {
    }
}

/** Whether a thread of this process sleeps, as a worker that waits for requests does. */
class SleepWatch {
  public:
    explicit SleepWatch(pid_t thread);
    ~SleepWatch();
    SleepWatch(const SleepWatch&) = delete;
    SleepWatch& operator=(const SleepWatch&) = delete;

    bool isAsleep() const;

  private:
    const int mFile;
};

}  // namespace brevold::bench
