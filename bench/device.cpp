#include "bench/device.h"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "bench/floors.h"
#include "brevold/frame_rate.h"
#include "brevold/protocol.h"
#include "host/device_profile.h"
#include "host/fake_device.h"

namespace brevold::bench {

namespace {

using host::ServiceCall;

constexpr auto kWindow = std::chrono::milliseconds(1001);

std::atomic<int> gHintsStarted;
std::atomic<int64_t> gHintStartNs;
cpu_set_t gProcessors;
std::array<std::atomic<pid_t>, 2> gWorkers;

void onServiceCall(const ServiceCall& call, void* /*context*/) {
    if (call.kind != ServiceCall::Kind::Hint || call.identifier != android::kScalingHint) return;
    const bool isQb = android::unpackTypeWord(static_cast<uint32_t>(call.type)).isQb;
    const size_t channel = isQb ? android::kQbChannel : android::kSfChannel;
    gWorkers[channel] = gettid();
    gHintStartNs = call.timeNs;
    ++gHintsStarted;
}

}  // namespace

void startDevice() {
    host::turnEverythingOn();
    host::startFakeDevice(onServiceCall, nullptr);
    sched_getaffinity(0, sizeof(gProcessors), &gProcessors);
    useProcessor(1);
    if (!brevoldInit()) throw std::runtime_error("no feature is on");
    startFloorWorker();
    useProcessor(0);
    spinUntil([] { return floorThread() != 0; });

    LayerFrameInfo info = frameOf(kLayer);
    for (int i = 0; i < 2; ++i)
        brevoldOnFrameAvailable(&info);
    if (!brevoldCheck("sf")) throw std::runtime_error("the application is not a target");

    // A signal is lost while a worker does not wait yet.
    measureRate(kPeriod60Ns);
    for (const Channel channel : {Channel::Sf, Channel::Qb}) {
        while (workerOf(channel) == 0) {
            android::energyScaling(1.0f, android::kDirectionUp, android::kBoost,
                                   static_cast<int>(channel));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    android::releaseScaling();
}

void useProcessor(size_t index) {
    size_t skip = index % static_cast<size_t>(CPU_COUNT(&gProcessors));
    size_t processor = 0;
    for (;; ++processor) {
        if (CPU_ISSET(processor, &gProcessors) && skip-- == 0) break;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(processor, &one);
    sched_setaffinity(0, sizeof(one), &one);
}

void addDebugLayerSetting(const std::string& list) {
    host::setProfileEntry(std::string(android::kDebugLayersProperty) + "=" + list);
    android::clearConfigs();
    brevoldInit();
}

void measureRate(int64_t intervalNs) {
    android::modeMonitor(android::kIdleGapNs);
    android::modeMonitor(intervalNs);
    std::this_thread::sleep_for(kWindow);
    android::modeMonitor(intervalNs);
}

LayerFrameInfo frameOf(const std::string& layerName) {
    LayerFrameInfo info = {};
    info.lastMaxQueuedFrames = 1;
    info.layerName = info.peerLayerName = layerName;
    info.sfTime = 1000000000;
    info.qbTime = info.sfTime + 2000000;
    info.lastQbTime = info.qbTime - kPeriod60Ns;
    info.refreshPeriod = kPeriod60Ns;
    return info;
}

int hintsStarted() {
    return gHintsStarted;
}

int64_t hintStartNs() {
    return gHintStartNs;
}

pid_t workerOf(Channel channel) {
    return gWorkers.at(static_cast<size_t>(channel));
}

SleepWatch::SleepWatch(pid_t thread)
      : mFile(open(("/proc/self/task/" + std::to_string(thread) + "/stat").c_str(),
                   O_RDONLY | O_CLOEXEC)) {
    if (!mFile.isOpen()) throw std::runtime_error("no such thread");
}

bool SleepWatch::isAsleep() const {
    char text[128];
    const ssize_t length = pread(mFile.get(), text, sizeof(text) - 1, 0);
    if (length <= 0) throw std::runtime_error("a thread has ended");
    text[length] = '\0';
    const char* const state = strrchr(text, ')');
    return state != nullptr && strncmp(state, ") S", 3) == 0;
}

}  // namespace brevold::bench
