#include "bench/floors.h"

#include <unistd.h>
#include <utils/Condition.h>
#include <utils/Mutex.h>
#include <utils/Thread.h>
#include <utils/Timers.h>

#include <atomic>
#include <regex>

namespace brevold::bench {

namespace {

using android::Mutex;

class FloorWorker : public android::Thread {
  public:
    FloorWorker() : Thread(true) {}

    void wake() {
        Mutex::Autolock lock(mLock);
        mCondition.signal();
    }

    std::atomic<int> mWakeUps = 0;
    std::atomic<int64_t> mWakeUpNs = 0;
    std::atomic<pid_t> mThread = 0;

  private:
    bool threadLoop() override {
        mThread = gettid();
        Mutex::Autolock lock(mLock);
        while (true) {
            mCondition.wait(mLock);
            mWakeUpNs = systemTime(SYSTEM_TIME_MONOTONIC);
            ++mWakeUps;
        }
    }

    Mutex mLock;
    android::Condition mCondition;
};

Mutex gFloorLock;
Mutex gFloorWorkerLock;
android::sp<FloorWorker> gFloorWorker;
volatile int64_t gSink;

}  // namespace

void refreshFloor() {
    const int64_t tickNs = systemTime(SYSTEM_TIME_MONOTONIC);
    gSink = systemTime(SYSTEM_TIME_MONOTONIC) - tickNs;
    Mutex::Autolock lock(gFloorWorkerLock);
}

int monitorFloor(int /*queuedFrames*/, int64_t /*periodNs*/) {
    gSink = systemTime(SYSTEM_TIME_MONOTONIC);
    Mutex::Autolock lock(gFloorLock);
    return 0;
}

int scalingFloor(int /*queuedFrames*/, int /*suppress*/) {
    Mutex::Autolock lock(gFloorLock);
    return 0;
}

std::string packageFloor(const std::string& layerName) {
    const std::regex expression("(?:SurfaceView[-\\s\\t]+)?([^/]+).*#\\d+", std::regex::ECMAScript);
    std::smatch match;
    if (!std::regex_match(layerName, match, expression)) return {};
    return match[1].str();
}

void startFloorWorker() {
    gFloorWorker = new FloorWorker;
    gFloorWorker->run("Floor", android::PRIORITY_URGENT_DISPLAY + android::PRIORITY_MORE_FAVORABLE,
                      0);
}

int scalingPostFloor(int /*queuedFrames*/, int /*suppress*/) {
    Mutex::Autolock lock(gFloorLock);
    gFloorWorker->wake();
    return 0;
}

void bufferMonitorFloor(int /*lastMaxQueuedFrames*/, std::string /*peerLayerName*/,
                        std::string /*layerName*/, int64_t /*diffSFToQB*/, int64_t /*diffQB*/,
                        int64_t /*sfTime*/, int64_t /*reserved*/, int64_t /*refreshPeriod*/) {
    gFloorWorker->wake();
}

void handOverFloor() {
    gFloorWorker->wake();
}

int floorWakeUps() {
    return gFloorWorker->mWakeUps;
}

int64_t floorWakeUpNs() {
    return gFloorWorker->mWakeUpNs;
}

int floorThread() {
    return gFloorWorker->mThread;
}

}  // namespace brevold::bench
