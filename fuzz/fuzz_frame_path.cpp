// The frame path. Half of the inputs are frames of steady rates, for which every call of the
// service is known. The others are any settings, calls of the compositor and answers of the
// service.

#include <fuzzer/FuzzedDataProvider.h>
#include <utils/Thread.h>

#include <cstring>

#include "brevold/brevold.h"
#include "brevold/state.h"
#include "fuzz/fuzz.h"
#include "tests/account.h"

using namespace android;
using namespace brevold::test;
using brevold::fuzz::require;
namespace host = brevold::host;

namespace {

/** Differences of stamps this far apart, and the differences of those, fit in 64 bits. */
constexpr int64_t kFarNs = int64_t{1} << 61;

/** Feature and client library: 0 is missing, 1 lacks its functions, 2 is complete. */
int gFound[2] = {2, 2};
int64_t gNowNs;

/** The workers of the first initialisation serve every input. */
void initialise() {
    clearConfigs();
    gPerfGetProp = nullptr;
    const bool isAnyOn = brevoldInit();
    require(isAnyOn == (gJr10Enabled || gScalingEnabled || gFpsSwitchEnabled), "any feature");
    static const sp<ScalingSyncThread> workers[] = {gSFThread, gQBThread};
    gSFThread = workers[0];
    gQBThread = workers[1];
}

void initialiseAnyhow(FuzzedDataProvider& input) {
    for (int& found : gFound)
        found = std::min(input.ConsumeIntegralInRange(0, 7), 2);
    gDevice.features = {};
    if (input.ConsumeIntegralInRange(0, 3) != 0) gDevice.features = {4, 5};
    for (const char* key :
         {kSmoothMotionProperty, kFpsSwitchProperty, kJankBoostProperty, kScalingProperty,
          kDebugProperty, kScalingDownProperty, kDebugLayersProperty})
        gDevice.properties[key] =
                input.ConsumeIntegralInRange(0, 5) ? "1" : input.ConsumeRandomLengthString(100);
    initialise();
    if (input.ConsumeBool()) gPerfLockRel = nullptr;
}

/** Near now, as real stamps are, or far away. */
int64_t anyStampNs(FuzzedDataProvider& input) {
    if (!input.ConsumeBool()) return input.ConsumeIntegralInRange(-kFarNs, kFarNs);
    return gNowNs + input.ConsumeIntegralInRange<int64_t>(-50000000, 50000000);
}

std::string anyName(FuzzedDataProvider& input) {
    return input.ConsumeBool() ? kLayers[0].name : input.ConsumeRandomLengthString(40);
}

/** Calls the entry points with anything that must not abort. */
void callAll(FuzzedDataProvider& input) {
    gDevice.appType = input.ConsumeIntegralInRange(-1, 3);
    gDevice.nextHandle = input.ConsumeIntegralInRange(-2, 9);
    LayerFrameInfo info = {};
    info.skipLayerCheck = input.ConsumeBool() ? 1 : 0;
    info.layerKeyA = input.ConsumeIntegralInRange(0, 1);
    info.lastMaxQueuedFrames = input.ConsumeIntegral<int>();
    info.layerName = anyName(input);
    info.peerLayerName = input.ConsumeBool() ? info.layerName : anyName(input);
    info.qbTime = anyStampNs(input);
    info.lastQbTime = input.ConsumeBool() ? -1 : anyStampNs(input);
    info.sfTime = anyStampNs(input);
    info.refreshPeriod =
            input.ConsumeBool() ? kRates[0].periodNs : input.ConsumeIntegral<int64_t>();
    brevoldOnFrameAvailable(&info);
    brevoldMonitor(input.ConsumeIntegral<int>(), info.refreshPeriod);
    brevoldScaling(input.ConsumeIntegral<int>(), 0);
    energyScaling(input.ConsumeFloatingPoint<float>(), input.ConsumeIntegral<unsigned>(),
                  input.ConsumeIntegral<unsigned>(), input.ConsumeIntegralInRange(-1, 2));
    modeMonitor(input.ConsumeIntegral<int64_t>());
    const int64_t intervalNs = input.ConsumeIntegralInRange<int64_t>(-1000, 200000000);
    for (int ticks = input.ConsumeBool() ? 100 : 1; ticks > 0; --ticks) {
        host::setTimeNs(gNowNs += intervalNs);
        brevoldRefresh();
    }
    const std::string calls = takeCalls();
    require(calls.find("release 0") == std::string::npos &&
                    calls.find("release -") == std::string::npos,
            "only a held handle is released");
    require(modeWithoutLock() >= 0 && modeWithoutLock() <= 5, "the mode is one of six");
}

void playSteadily(FuzzedDataProvider& input) {
    const auto pick = [&](size_t below) {
        return input.ConsumeIntegralInRange<size_t>(0, below - 1);
    };
    std::fill_n(gFound, 2, 2);
    Account account;
    account.restart(pick);
    initialise();
    Frame frame;
    while (input.remaining_bytes() > 0) {
        const std::string differences = playFrame(account, frame, gNowNs, pick);
        require(differences.empty(), differences.c_str());
    }
}

/** The state after loading, except that the workers live as long as the process. */
void reset() {
    releaseScaling();
    host::settle();
    gCurrentLayer.clear();
    gDebugLayers.clear();
    gRefreshRate = gRefreshRateHandle = 0;
    host::takeLog();
    host::takeTraceMarks();
    host::setTimeNs(gNowNs = 100000000000);
    gDevice = {};
}

}  // namespace

extern "C" {

// Replaces the library's call.
void* __real_dlopen(const char*, int);
void* __wrap_dlopen(const char* name, int mode) {
    const int found = gFound[strcmp(name, kPerfClientLibrary) == 0];
    return found == 0 ? nullptr : __real_dlopen(found == 1 ? "libc.so.6" : nullptr, mode);
}

// Workers of later initialisations do not run.
int __real__ZN7android6Thread3runEPKcim(void*, const char*, int, size_t);
int __wrap__ZN7android6Thread3runEPKcim(void* thread, const char* name, int priority, size_t size) {
    if (host::startedThreads().size() >= 2) return OK;
    return __real__ZN7android6Thread3runEPKcim(thread, name, priority, size);
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    [[maybe_unused]] static const bool isStarted = (initialise(), true);
    FuzzedDataProvider input(data, size);
    reset();
    while (input.ConsumeIntegralInRange(0, 7) > 2) {
        initialiseAnyhow(input);
        while (input.ConsumeIntegralInRange(0, 7) > 1)
            callAll(input);
    }
    reset();
    playSteadily(input);
    return 0;
}

}  // extern "C"
