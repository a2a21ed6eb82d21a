#include "host/driver.h"

#include <dlfcn.h>

#include <mutex>
#include <stdexcept>
#include <utility>

#include "host/fake_device.h"
#include "host/workers.h"

namespace brevold::host {

namespace {

std::mutex gCallsLock;
std::vector<ServiceCall> gCalls;

void recordCall(const ServiceCall& call, void* /*context*/) {
    const std::lock_guard lock(gCallsLock);
    gCalls.push_back(call);
}

}  // namespace

// The public header declares the types.
struct Driver::EntryPoints {
    explicit EntryPoints(void* handle)
          : init(findFunction<decltype(init)>(handle, "brevoldInit")),
            onFrameAvailable(
                    findFunction<decltype(onFrameAvailable)>(handle, "brevoldOnFrameAvailable")),
            monitor(findFunction<decltype(monitor)>(handle, "brevoldMonitor")),
            scaling(findFunction<decltype(scaling)>(handle, "brevoldScaling")),
            refresh(findFunction<decltype(refresh)>(handle, "brevoldRefresh")) {}

    decltype(&brevoldInit) init;
    decltype(&brevoldOnFrameAvailable) onFrameAvailable;
    decltype(&brevoldMonitor) monitor;
    decltype(&brevoldScaling) scaling;
    decltype(&brevoldRefresh) refresh;
};

Driver::Driver(Workers workers) : mWorkers(workers) {
    startFakeDevice(recordCall, nullptr);
    mHandle = openLibrary(libraryPath());
    mEntryPoints = std::make_unique<EntryPoints>(mHandle);
}

Driver::~Driver() = default;

bool Driver::init(int64_t timeNs) {
    setTimeNs(timeNs);
    const bool isAnyFeatureOn = mEntryPoints->init();
    finishCall();
    return isAnyFeatureOn;
}

void Driver::frame(int64_t timeNs, LayerFrameInfo& info) {
    setTimeNs(timeNs);
    mEntryPoints->onFrameAvailable(&info);
    finishCall();
}

void Driver::beginComposition(int64_t timeNs) {
    setTimeNs(timeNs);
    mEntryPoints->refresh();
    finishCall();
}

int Driver::endComposition(int64_t timeNs, int32_t queuedFrames, bool suppress) {
    setTimeNs(timeNs);
    const int status = mEntryPoints->scaling(queuedFrames, suppress ? 1 : 0);
    finishCall();
    return status;
}

bool Driver::vsync(int64_t timeNs, int32_t queuedFrames, int64_t periodNs) {
    setTimeNs(timeNs);
    const int verdict = mEntryPoints->monitor(queuedFrames, periodNs);
    finishCall();
    return verdict != 0;
}

std::vector<ServiceCall> Driver::takeServiceCalls() {
    const std::lock_guard lock(gCallsLock);
    return std::exchange(gCalls, {});
}

void Driver::closeLibrary() {
    mEntryPoints.reset();
    if (dlclose(mHandle) != 0) throw std::runtime_error(dlerror());
}

void Driver::finishCall() {
    if (mWorkers == Workers::Stepped) settle();
}

}  // namespace brevold::host
