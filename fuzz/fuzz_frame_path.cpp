// Initialisation and the frame path: switches and debug layers follow the settings, and hints
// follow the posted requests, for any reports of the compositor and any answers of the service.

#include <cutils/properties.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <utils/Thread.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>

#include "brevold/brevold.h"
#include "brevold/state.h"
#include "fuzz/fuzz.h"
#include "host/virtual_platform.h"
#include "host/workers.h"

using namespace android;
using brevold::fuzz::require;
namespace host = brevold::host;

namespace {

constexpr int64_t kPeriodsNs[] = {16666666, 11111111, 8333333, 33333333, 16000001, 16999999};
constexpr int kQueues[] = {0, 1, 2, 3, 4};
constexpr const char* kNames[] = {"com.example.a/Main#0", "com.example.b#1", "1", ""};
/** Differences of stamps this far apart, and the differences of those, fit in 64 bits. */
constexpr int64_t kFarNs = int64_t{1} << 61;

constexpr const char* kSwitches[] = {kSmoothMotionProperty, kFpsSwitchProperty,
                                     kJankBoostProperty,    kScalingProperty,
                                     kDebugProperty,        kScalingDownProperty};

/** Duration and type word. */
using Hint = std::pair<int, uint32_t>;

/** The service, its calls, and the requests posted to the two workers. */
struct Service {
    std::map<std::string, std::string> settings;
    bool allowed[2] = {true, true};
    /** Feature and client library: 0 is missing, 1 lacks its functions, 2 is complete. */
    int found[2] = {2, 2};
    int appType, nextHandle, heldHandle;
    bool isCalled;
    std::mutex lock;
    std::vector<Hint> hints;
    uint32_t sfType, qbType, sfCount;
    bool isBoostHeld;
};
Service gService;
int64_t gNowNs;

/** Compares the hints that the workers sent with the requests. */
void compareHints() {
    host::settle();
    for (const auto& [duration, type] : gService.hints) {
        if (duration == 0) {
            require(type == gService.sfCount, "releases count boosts");
            gService.sfCount = 0;
            gService.isBoostHeld = false;
        } else if (duration == 2000) {
            require(type == gService.sfType, "the boost's type word is that of the request");
            require(!gService.isBoostHeld, "a boost is sent once");
            gService.isBoostHeld = true;
        } else {
            require(type == gService.qbType && duration > 0,
                    "the type word is that of the request");
        }
    }
    gService.hints.clear();
    require(gMode >= 0 && gMode <= 5, "the mode is one of six");
}

/** Initialises with random settings. The workers of the first initialisation serve every input. */
void initialise(FuzzedDataProvider& input) {
    static const sp<ScalingSyncThread> workers[] = {gSFThread, gQBThread};
    for (int& found : gService.found)
        found = std::min(input.ConsumeIntegralInRange(0, 7), 2);
    for (bool& allowed : gService.allowed)
        allowed = input.ConsumeIntegralInRange(0, 3) != 0;
    for (const char* setting : kSwitches)
        gService.settings[setting] =
                input.ConsumeIntegralInRange(0, 5) ? "1" : input.ConsumeRandomLengthString(100);
    gService.settings[kDebugLayersProperty] = input.ConsumeRandomLengthString(100);
    clearConfigs();
    gPerfGetProp = nullptr;
    const size_t listed = gDebugLayers.size();
    const bool isAnyOn = brevoldInit();

    require(isAnyOn == (gJr10Enabled || gScalingEnabled || gFpsSwitchEnabled), "any feature");
    require((gSFThread != workers[0]) == gScalingEnabled, "workers with energy scaling only");
    gSFThread = workers[0];
    gQBThread = workers[1];
    if (input.ConsumeBool()) gPerfLockRel = nullptr;

    const auto textOf = [](const char* setting) -> std::string {
        return gService.settings[setting].substr(0, kSettingSize - 1).c_str();
    };
    const bool switches[] = {gSmoothMotion, gFpsSwitchEnabled == 1, gJr10Enabled, gScalingEnabled,
                             gDebug,        gPfarDownEnabled};
    for (size_t i = 0; i < std::size(switches); ++i)
        require(!switches[i] || atoi(textOf(kSwitches[i]).c_str()) == 1, kSwitches[i]);
    const bool readsList = gService.found[0] + gService.found[1] == 4 &&
                           (gService.allowed[0] || gService.allowed[1]) &&
                           textOf(kDebugLayersProperty).compare(0, 4, "NONE") != 0;
    const std::string list = readsList ? textOf(kDebugLayersProperty) : "";
    std::string joined;
    for (size_t i = listed; i < gDebugLayers.size(); ++i) {
        require(isDebugLayer(gDebugLayers[i]), "listed layers are debug layers");
        joined += gDebugLayers[i] + " ";
    }
    require(joined == list || joined == list + " ", "the list is split at blanks and appended");
}

template <typename T, size_t N>
T any(FuzzedDataProvider& input, const T (&likely)[N]) {
    return input.ConsumeBool() ? input.PickValueInArray(likely) : input.ConsumeIntegral<T>();
}

/** Near now, as real stamps are, or far away. */
int64_t anyStampNs(FuzzedDataProvider& input) {
    if (!input.ConsumeBool()) return input.ConsumeIntegralInRange(-kFarNs, kFarNs);
    return gNowNs + input.ConsumeIntegralInRange<int64_t>(-50000000, 50000000);
}

std::string anyName(FuzzedDataProvider& input) {
    return input.ConsumeBool() ? input.PickValueInArray(kNames)
                               : input.ConsumeRandomLengthString(40);
}

void reportFrame(FuzzedDataProvider& input) {
    LayerFrameInfo info = {};
    info.skipLayerCheck = input.ConsumeIntegralInRange<uint8_t>(0, 7) == 0 ? 1 : 0;
    info.layerKeyA = input.ConsumeIntegralInRange(0, 1);
    info.lastMaxQueuedFrames = any(input, kQueues);
    info.layerName = anyName(input);
    info.peerLayerName = input.ConsumeBool() ? info.layerName : anyName(input);
    info.qbTime = anyStampNs(input);
    info.lastQbTime = input.ConsumeBool() ? -1 : anyStampNs(input);
    info.sfTime = anyStampNs(input);
    info.refreshPeriod = any(input, kPeriodsNs);
    require(brevoldOnFrameAvailable(&info) == 0, "a report always returns 0");
}

/** A refresh tick, or enough ticks to close a window. */
void tick(FuzzedDataProvider& input) {
    const bool isWindow = input.ConsumeBool();
    const int64_t intervalNs = isWindow ? input.PickValueInArray(kPeriodsNs)
                                        : input.ConsumeIntegralInRange<int64_t>(-1000, 200000000);
    for (int64_t i = isWindow ? 1000000000 / intervalNs + 2 : 1; i > 0; --i) {
        host::setTimeNs(gNowNs += intervalNs);
        brevoldRefresh();
    }
    compareHints();
    require(!gScalingEnabled || !gService.isBoostHeld, "a tick releases every boost");
}

void step(FuzzedDataProvider& input) {
    switch (input.ConsumeIntegralInRange(0, 11)) {
        case 0:
            return tick(input);
        case 1:
            return require(brevoldScaling(any(input, kQueues), input.ConsumeBool()) == 0, "0");
        case 2: {
            const int verdict = brevoldMonitor(any(input, kQueues), any(input, kPeriodsNs));
            return require(verdict == 0 || (verdict == 1 && gMode <= 1), "verdict in low modes");
        }
        case 3:
            return energyScaling(
                    input.ConsumeFloatingPoint<float>(), input.ConsumeIntegralInRange(0u, 3u),
                    input.ConsumeIntegralInRange(0u, 2u), input.ConsumeIntegralInRange(-1, 2));
        case 4:
            return modeMonitor(input.ConsumeIntegral<int64_t>());
        case 5:
            gService.appType = input.ConsumeIntegralInRange(-1, 3);
            gService.nextHandle = input.ConsumeIntegralInRange(-2, 9);
            return;
        case 6:
            return initialise(input);
        default:
            return reportFrame(input);
    }
}

}  // namespace

extern "C" {

// The service's functions, found by name in the program.
int perf_hint(int hint, const char* package, int duration, int type) {
    const std::lock_guard lock(gService.lock);
    gService.isCalled = true;
    require(package == nullptr, "hints name no package");
    if (hint == kRefreshRateHint) return gService.heldHandle = gService.nextHandle;
    gService.hints.push_back({duration, static_cast<uint32_t>(type)});
    return gService.nextHandle;
}
int perf_lock_rel(int handle) {
    gService.isCalled = true;
    require(handle > 0 && handle == gService.heldHandle,
            "only the held handle is released, and once");
    return gService.heldHandle = 0;
}
int perf_get_feedback(int, const char*) {
    gService.isCalled = true;
    return gService.appType;
}
/** Not terminated if the text fills the setting. */
PerfSetting perf_get_prop(const char* key, const char*) {
    PerfSetting setting;
    strncpy(setting.text, gService.settings[key].c_str(), sizeof(setting.text));
    return setting;
}
int IsFeatureEnabled(int feature) {
    return gService.allowed[feature == kEnergyScalingFeature ? 1 : 0];
}

// Replaces the library's call.
void* __real_dlopen(const char*, int);
void* __wrap_dlopen(const char* name, int mode) {
    const int found = gService.found[strcmp(name, kPerfClientLibrary) == 0];
    return found == 0 ? nullptr : __real_dlopen(found == 1 ? "libc.so.6" : nullptr, mode);
}

// Records the library's requests before it posts them.
void __real__ZN7android13energyScalingEfjji(float, unsigned, unsigned, int);
void __wrap__ZN7android13energyScalingEfjji(float scale, unsigned direction, unsigned boostLevel,
                                            int channel) {
    if (gScalingEnabled && direction != 0) {
        const double thousandths = static_cast<double>(scale * 1000.0f);
        const double bounded = !(thousandths > 0) ? 0 : std::min(thousandths, 4294967295.0);
        const uint32_t word =
                (static_cast<uint32_t>(bounded) & 0xffff) | direction << 16 | boostLevel << 19;
        if (channel == 0) gService.sfType = word;
        if (channel == 0 && boostLevel != 0) ++gService.sfCount;
        if (channel == 1) gService.qbType = word | 1u << 22;
    }
    __real__ZN7android13energyScalingEfjji(scale, direction, boostLevel, channel);
}

// Workers of later initialisations do not run.
int __real__ZN7android6Thread3runEPKcim(void*, const char*, int, size_t);
int __wrap__ZN7android6Thread3runEPKcim(void* thread, const char* name, int priority, size_t size) {
    if (host::startedThreads().size() >= 2) return OK;
    return __real__ZN7android6Thread3runEPKcim(thread, name, priority, size);
}

int LLVMFuzzerInitialize(int*, char***) {
    for (const char* setting : kSwitches)
        gService.settings[setting] = "1";
    require(brevoldInit(), "everything is on");
    return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    // The workers live as long as the process; everything else starts as after loading.
    releaseScaling();
    compareHints();
    require(!gService.isBoostHeld, "a withdrawn boost is released");
    gCurrentLayer.clear();
    gDebugLayers.clear();
    gRefreshRate = gRefreshRateHandle = gService.heldHandle = 0;
    host::takeLog();
    host::takeTraceMarks();
    host::setTimeNs(gNowNs = 100000000000);
    gService.appType = 2;
    gService.nextHandle = 1;
    initialise(input);
    while (input.remaining_bytes() > 0) {
        gService.isCalled = false;
        const bool isOff = !gScalingEnabled && !gJr10Enabled && gFpsSwitchEnabled == 0;
        step(input);
        compareHints();
        require(!isOff || !gService.isCalled, "with every feature off the service is not called");
    }
    return 0;
}

}  // extern "C"

int property_get(const char* key, char* value, const char*) {
    strcpy(value, gService.settings[key].substr(0, PROPERTY_VALUE_MAX - 1).c_str());
    return static_cast<int>(strlen(value));
}
