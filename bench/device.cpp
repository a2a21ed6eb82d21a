#include "bench/device.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "bench/floors.h"
#include "host/device_profile.h"
#include "host/fake_perf_client.h"

namespace brevold::bench {

namespace {

using host::ServiceCall;

constexpr int kScalingHint = 4166;
constexpr int64_t kIdleGapNs = 150000000;
constexpr auto kWindow = std::chrono::milliseconds(1001);
constexpr int32_t kQbBit = 1 << 22;

std::atomic<int> gDelayMs;
std::atomic<int> gHintsBegun;
std::atomic<int> gHintsEnded;
std::atomic<int64_t> gHintBegunNs;
cpu_set_t gProcessors;
std::array<std::atomic<pid_t>, 2> gWorkers;
std::array<std::atomic<pthread_t>, 2> gWorkerThreads;

[[noreturn]] void fail(const std::string& what) {
    fprintf(stderr, "brevold-bench: %s\n", what.c_str());
    exit(2);
}

void onServiceCall(const ServiceCall& call, void* /*context*/) {
    const bool isScaling = call.kind == ServiceCall::Kind::Hint && call.identifier == kScalingHint;
    if (isScaling) {
        const size_t channel = (call.type & kQbBit) != 0 ? 1 : 0;
        gWorkers[channel] = gettid();
        gWorkerThreads[channel] = pthread_self();
        gHintBegunNs = call.timeNs;
        ++gHintsBegun;
    }
    const int delayMs = gDelayMs;
    if (delayMs != 0) std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
    if (isScaling) ++gHintsEnded;
}

void* open(const std::string& name) {
    void* const handle = dlopen((BREVOLD_FAKES "/" + name).c_str(), RTLD_NOW);
    if (handle == nullptr) fail(dlerror());
    return handle;
}

void openServices() {
    open("libfeatgate_system.so");
    const auto setListener = reinterpret_cast<decltype(&host::perfd_set_listener)>(
            dlsym(open("libvnx-perfd-client_system.so"), host::kSetServiceListener));
    setListener(onServiceCall, nullptr);
}

}  // namespace

void startDevice() {
    for (const char* entry :
         {"vendor.display.use_smooth_motion=1", "vendor.perf.fps_switch.enable=1",
          "vendor.perf.jr10.enable=1", "vendor.perf.pfar.enable=1",
          "vendor.perf.pfar.down.enable=1", "feature.4=1", "feature.5=1", "app-type.*=2"}) {
        host::setProfileEntry(entry);
    }
    openServices();
    sched_getaffinity(0, sizeof(gProcessors), &gProcessors);
    useProcessor(1);
    if (!brevoldInit()) fail("no feature is on");
    startFloorWorker();
    useProcessor(0);
    spinUntil([] { return floorThread() != 0; });

    LayerFrameInfo info = frameOf(kLayer);
    for (int i = 0; i < 2; ++i)
        brevoldOnFrameAvailable(&info);
    if (!brevoldCheck("sf")) fail("the application is not a target");

    // A wake-up is lost on a worker that has not begun to wait.
    measureRate(kPeriod60Ns);
    for (const Channel channel : {Channel::Sf, Channel::Qb}) {
        while (workerOf(channel) == 0) {
            android::energyScaling(1.0f, 2, 2, static_cast<int>(channel));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    android::releaseScaling();
}

size_t processorCount() {
    return static_cast<size_t>(CPU_COUNT(&gProcessors));
}

void useProcessor(size_t index) {
    size_t left = index % processorCount();
    size_t processor = 0;
    for (;; ++processor) {
        if (CPU_ISSET(processor, &gProcessors) && left-- == 0) break;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(processor, &one);
    sched_setaffinity(0, sizeof(one), &one);
}

void addDebugLayerSetting(const std::string& list) {
    host::setProfileEntry("vendor.perf.brevold.debug.layers=" + list);
    android::clearConfigs();
    brevoldInit();
}

void measureRate(int64_t intervalNs) {
    android::modeMonitor(kIdleGapNs);
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

void setServiceDelayMs(int delayMs) {
    gDelayMs = delayMs;
}

int hintsBegun() {
    return gHintsBegun;
}

int64_t hintBegunNs() {
    return gHintBegunNs;
}

bool isHintUnderWay() {
    return gHintsBegun != gHintsEnded;
}

pid_t workerOf(Channel channel) {
    return gWorkers.at(static_cast<size_t>(channel));
}

StackBytes stackOf(Channel channel) {
    pthread_attr_t attributes;
    pthread_getattr_np(gWorkerThreads.at(static_cast<size_t>(channel)), &attributes);
    void* stack = nullptr;
    StackBytes bytes = {};
    pthread_attr_getstack(&attributes, &stack, &bytes.reserved);
    pthread_attr_destroy(&attributes);

    const auto pageBytes = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    std::vector<unsigned char> pages(bytes.reserved / pageBytes);
    if (mincore(stack, bytes.reserved, pages.data()) != 0) fail("mincore failed");
    for (const unsigned char page : pages)
        bytes.used += (page & 1u) * pageBytes;
    return bytes;
}

SleepWatch::SleepWatch(pid_t thread)
      : mFile(::open(("/proc/self/task/" + std::to_string(thread) + "/stat").c_str(),
                     O_RDONLY | O_CLOEXEC)) {
    if (mFile < 0) fail("no such thread");
}

SleepWatch::~SleepWatch() {
    close(mFile);
}

bool SleepWatch::isAsleep() const {
    char text[128];
    const ssize_t length = pread(mFile, text, sizeof(text) - 1, 0);
    if (length <= 0) fail("a thread has ended");
    text[length] = '\0';
    const char* const state = strrchr(text, ')');
    return state != nullptr && strncmp(state, ") S", 3) == 0;
}

}  // namespace brevold::bench
