// The frame path. Half of the inputs are frames of steady rates, for which every call of the
// service is known. The others are any settings, reports of the compositor and answers of the
// service; for these, hints follow the posted requests.

#include <cutils/properties.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <utils/Thread.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

#include "brevold/brevold.h"
#include "brevold/state.h"
#include "fuzz/fuzz.h"
#include "host/virtual_platform.h"
#include "host/workers.h"
#include "tests/account.h"

using namespace android;
using brevold::fuzz::require;
using brevold::test::Account;
using brevold::test::Frame;
using brevold::test::Switches;
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
    std::string calls;
    std::vector<Hint> hints;
    uint32_t sfType, qbType, sfCount;
    bool isBoostHeld;
};
Service gService;
int64_t gNowNs;

template <typename... Values>
void addCall(const char* format, Values... values) {
    char text[200];
    snprintf(text, sizeof(text), format, values...);
    gService.calls += (gService.calls.empty() ? "" : "; ") + std::string(text);
}

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
    require(modeWithoutLock() >= 0 && modeWithoutLock() <= 5, "the mode is one of six");
}

/** Initialises again. The workers of the first initialisation serve every input. */
void initialise() {
    static const sp<ScalingSyncThread> workers[] = {gSFThread, gQBThread};
    clearConfigs();
    gPerfGetProp = nullptr;
    const bool isAnyOn = brevoldInit();
    require(isAnyOn == (gJr10Enabled || gScalingEnabled || gFpsSwitchEnabled), "any feature");
    require((gSFThread != workers[0]) == gScalingEnabled, "workers with energy scaling only");
    gSFThread = workers[0];
    gQBThread = workers[1];
}

void initialiseAnyhow(FuzzedDataProvider& input) {
    for (int& found : gService.found)
        found = std::min(input.ConsumeIntegralInRange(0, 7), 2);
    for (bool& allowed : gService.allowed)
        allowed = input.ConsumeIntegralInRange(0, 3) != 0;
    for (const char* setting : kSwitches)
        gService.settings[setting] =
                input.ConsumeIntegralInRange(0, 5) ? "1" : input.ConsumeRandomLengthString(100);
    gService.settings[kDebugLayersProperty] = input.ConsumeRandomLengthString(100);
    initialise();
    if (input.ConsumeBool()) gPerfLockRel = nullptr;
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
            return require(verdict == 0 || (verdict == 1 && modeWithoutLock() <= 1),
                           "verdict in low modes");
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
            return initialiseAnyhow(input);
        default:
            return reportFrame(input);
    }
}

void stepAnyhow(FuzzedDataProvider& input) {
    gService.calls.clear();
    const bool isOff = !gScalingEnabled && !gJr10Enabled && gFpsSwitchEnabled == 0;
    step(input);
    compareHints();
    require(!isOff || gService.calls.empty(), "with every feature off the service is not called");
}

Switches initialiseSteadily(FuzzedDataProvider& input) {
    Switches switches;
    const std::pair<bool&, const char*> settings[] = {
            {switches.scaling, kScalingProperty},
            {switches.scalingDown, kScalingDownProperty},
            {switches.jankBoost, kJankBoostProperty},
            {switches.smoothMotion, kSmoothMotionProperty},
            {switches.refreshRate, kFpsSwitchProperty}};
    for (const auto& [isOn, setting] : settings) {
        isOn = input.ConsumeIntegralInRange(0, 5) != 0;
        gService.settings[setting] = isOn ? "1" : "0";
    }
    for (int i = 0; i < 2; ++i) {
        gService.found[i] = 2;
        gService.allowed[i] = true;
    }
    gService.settings[kDebugProperty] = "0";
    gService.settings[kDebugLayersProperty] = brevold::test::kDebugLayer.name;
    initialise();
    return switches;
}

void playSteadily(FuzzedDataProvider& input) {
    Account account(initialiseSteadily(input));
    Frame frame = {};
    frame.rate = brevold::test::kRates;
    frame.layer = brevold::test::kLayers;
    const auto requireDue = [&account](const char* entryPoint) {
        compareHints();
        require(std::exchange(gService.calls, {}) == account.takeDue(), entryPoint);
    };
    while (input.remaining_bytes() > 0) {
        advance(frame, gNowNs,
                [&](size_t below) { return input.ConsumeIntegralInRange<size_t>(0, below - 1); });
        gService.appType = frame.layer->appType;
        host::setTimeNs(frame.nowNs);
        account.tick(frame);
        brevoldRefresh();
        requireDue("calls of a tick");
        account.report(frame);
        LayerFrameInfo info = infoOf(frame);
        brevoldOnFrameAvailable(&info);
        requireDue("calls of a report");
        host::setTimeNs(frame.nowNs += input.ConsumeIntegralInRange(0, 2) * 9000000);
        require(brevoldMonitor(frame.queued, frame.rate->periodNs) == account.vsync(frame),
                "the verdict");
        account.compose(frame);
        brevoldScaling(frame.queued, frame.isSuppressed);
        requireDue("calls of a composition");
    }
}

}  // namespace

extern "C" {

// The service's functions, found by name in the program.
int perf_hint(int hint, const char* package, int duration, int type) {
    require(package == nullptr, "hints name no package");
    addCall("hint %d %d 0x%x", hint, duration, static_cast<unsigned>(type));
    const int handle = gService.nextHandle > 0 ? gService.nextHandle++ : gService.nextHandle;
    if (hint == kRefreshRateHint) return gService.heldHandle = handle;
    gService.hints.push_back({duration, static_cast<uint32_t>(type)});
    return handle;
}
int perf_lock_rel(int handle) {
    require(handle > 0 && handle == gService.heldHandle,
            "only the held handle is released, and once");
    addCall("release %d", handle);
    return gService.heldHandle = 0;
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
    gService.calls.clear();
    if (input.ConsumeBool()) {
        playSteadily(input);
        return 0;
    }
    initialiseAnyhow(input);
    while (input.remaining_bytes() > 0)
        stepAnyhow(input);
    return 0;
}

}  // extern "C"

int property_get(const char* key, char* value, const char*) {
    strcpy(value, gService.settings[key].substr(0, PROPERTY_VALUE_MAX - 1).c_str());
    return static_cast<int>(strlen(value));
}
