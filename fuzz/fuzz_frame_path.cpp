// The frame path. Half of the inputs are frames of steady rates, for which every call of the
// service is known. The others are any settings, calls of the compositor and answers of the
// service.

#include <cutils/properties.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <utils/Thread.h>

#include <cstring>
#include <functional>
#include <map>
#include <utility>

#include "brevold/brevold.h"
#include "brevold/state.h"
#include "fuzz/fuzz.h"
#include "host/virtual_platform.h"
#include "host/workers.h"
#include "tests/account.h"

using namespace android;
using namespace brevold::test;
using brevold::fuzz::require;
namespace host = brevold::host;

namespace {

/** Differences of stamps this far apart, and the differences of those, fit in 64 bits. */
constexpr int64_t kFarNs = int64_t{1} << 61;

/** The service and its calls. */
struct Service {
    std::map<std::string, std::string> settings;
    bool isAllowed = true;
    /** Feature and client library: 0 is missing, 1 lacks its functions, 2 is complete. */
    int found[2] = {2, 2};
    int appType, nextHandle;
    std::string calls;
};
Service gService;
int64_t gNowNs;

template <typename... Values>
void addCall(const char* format, Values... values) {
    char text[200];
    snprintf(text, sizeof(text), format, values...);
    gService.calls += (gService.calls.empty() ? "" : "; ") + std::string(text);
}

/** Initialises with these settings. The workers of the first initialisation serve every input. */
void initialise(const std::function<std::string(std::string)>& settingOf) {
    for (const char* key :
         {kSmoothMotionProperty, kFpsSwitchProperty, kJankBoostProperty, kScalingProperty,
          kDebugProperty, kScalingDownProperty, kDebugLayersProperty})
        gService.settings[key] = settingOf(key);
    clearConfigs();
    gPerfGetProp = nullptr;
    const bool isAnyOn = brevoldInit();
    require(isAnyOn == (gJr10Enabled || gScalingEnabled || gFpsSwitchEnabled), "any feature");
    static const sp<ScalingSyncThread> workers[] = {gSFThread, gQBThread};
    gSFThread = workers[0];
    gQBThread = workers[1];
}

void initialiseAnyhow(FuzzedDataProvider& input) {
    for (int& found : gService.found)
        found = std::min(input.ConsumeIntegralInRange(0, 7), 2);
    gService.isAllowed = input.ConsumeIntegralInRange(0, 3) != 0;
    initialise([&input](const std::string&) -> std::string {
        return input.ConsumeIntegralInRange(0, 5) ? "1" : input.ConsumeRandomLengthString(100);
    });
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
    gService.appType = input.ConsumeIntegralInRange(-1, 3);
    gService.nextHandle = input.ConsumeIntegralInRange(-2, 9);
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
    host::settle();
    require(modeWithoutLock() >= 0 && modeWithoutLock() <= 5, "the mode is one of six");
}

void playSteadily(FuzzedDataProvider& input) {
    gService.found[0] = gService.found[1] = 2;
    gService.isAllowed = true;
    initialise([&input](const std::string& key) {
        if (key == kDebugLayersProperty) return kDebugLayer.name;
        return key != kDebugProperty && input.ConsumeIntegralInRange(0, 5) != 0 ? "1" : "0";
    });
    Account account;
    const auto isOn = [](const char* setting) { return gService.settings[setting] == "1"; };
    account.restart({isOn(kScalingProperty), isOn(kScalingDownProperty), isOn(kJankBoostProperty),
                     isOn(kSmoothMotionProperty), isOn(kFpsSwitchProperty)});
    Frame frame;
    while (input.remaining_bytes() > 0) {
        const bool isAccountedFor = playFrame(
                account, frame, gNowNs,
                [&](size_t below) { return input.ConsumeIntegralInRange<size_t>(0, below - 1); },
                host::setTimeNs, [](int appType) { gService.appType = appType; },
                [](const std::string& due) {
                    host::settle();
                    return std::exchange(gService.calls, {}) == due;
                });
        require(isAccountedFor, "the calls and the verdict are those due");
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
    gService.nextHandle = 1;
    gService.calls.clear();
}

}  // namespace

extern "C" {

// The service's functions, found by name in the program.
int perf_hint(int hint, const char* package, int duration, int type) {
    require(package == nullptr, "hints name no package");
    addCall("hint %d %d 0x%x", hint, duration, static_cast<unsigned>(type));
    return gService.nextHandle > 0 ? gService.nextHandle++ : gService.nextHandle;
}
int perf_lock_rel(int handle) {
    require(handle > 0, "only a held handle is released");
    addCall("release %d", handle);
    return 0;
}
int perf_get_feedback(int query, const char* package) {
    addCall("query %d %s", query, package);
    return gService.appType;
}
/** Not terminated if the text fills the setting. */
PerfSetting perf_get_prop(const char* key, const char*) {
    PerfSetting setting;
    strncpy(setting.text, gService.settings[key].c_str(), sizeof(setting.text));
    return setting;
}
int IsFeatureEnabled(int) {
    return gService.isAllowed;
}

// Replaces the library's call.
void* __real_dlopen(const char*, int);
void* __wrap_dlopen(const char* name, int mode) {
    const int found = gService.found[strcmp(name, kPerfClientLibrary) == 0];
    return found == 0 ? nullptr : __real_dlopen(found == 1 ? "libc.so.6" : nullptr, mode);
}

// Workers of later initialisations do not run.
int __real__ZN7android6Thread3runEPKcim(void*, const char*, int, size_t);
int __wrap__ZN7android6Thread3runEPKcim(void* thread, const char* name, int priority, size_t size) {
    if (host::startedThreads().size() >= 2) return OK;
    return __real__ZN7android6Thread3runEPKcim(thread, name, priority, size);
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    [[maybe_unused]] static const bool isStarted =
            (initialise([](const std::string&) { return "1"; }), true);
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

int property_get(const char* key, char* value, const char*) {
    strcpy(value, gService.settings[key].substr(0, PROPERTY_VALUE_MAX - 1).c_str());
    return static_cast<int>(strlen(value));
}
