#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "base/descriptor.h"
#include "brevold/brevold.h"
#include "brevold/protocol.h"

/** The benchmark's device: the host's clock and threads, and fakes of the services. */
namespace brevold::bench {

constexpr int64_t kPeriod60Ns = 16666666;
constexpr char kLayer[] = "SurfaceView - com.example.game/com.example.game.MainActivity#0";

enum class Channel { Sf = android::kSfChannel, Qb = android::kQbChannel };

/**
 * Initialises the library with every feature on and without debug output. With two processors, the
 * library's and the floor's workers get one for themselves: a worker woken on the caller's
 * processor would run before the caller continues. Throws std::runtime_error.
 */
void startDevice();

/** Keeps the calling thread and those it starts on one processor; the index wraps around. */
void useProcessor(size_t index);

/** Initialises again with a debug layer list, which adds to the earlier lists. */
void addDebugLayerSetting(const std::string& list);

/** Measures a frame-rate window with this interval between ticks. Takes a second. */
void measureRate(int64_t intervalNs);

/** Returns a frame that needs no request: one frame is queued and it is on time. */
LayerFrameInfo frameOf(const std::string& layerName);

/** Number of scaling hints started so far. */
int hintsStarted();
/** Start of the last scaling hint. */
int64_t hintStartNs();

/** Returns the thread that last sent a hint on a channel, or 0. */
pid_t workerOf(Channel channel);

/** Blocks until the condition holds, without yielding the processor. */
template <typename Condition>
void spinUntil(Condition condition) {
    while (!condition()) {
    }
}

/** Watches a thread of this process; a worker that waits for requests is asleep. */
class SleepWatch {
  public:
    explicit SleepWatch(pid_t thread);

    bool isAsleep() const;

  private:
    const Descriptor mFile;
};

}  // namespace brevold::bench
