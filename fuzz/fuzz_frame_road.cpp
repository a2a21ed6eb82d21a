// The frame road: whatever the compositor reports and the service answers, what is sent follows
// from what was posted.

#include <cutils/properties.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "brevold/brevold.h"
#include "brevold/state.h"
#include "fuzz/fuzz.h"
#include "host/virtual_platform.h"

namespace {

using brevold::fuzz::require;
namespace host = brevold::host;

constexpr int64_t kPeriodsNs[] = {16666666, 11111111, 8333333, 33333333, 16000001, 16999999};
constexpr uint32_t kQbChannelBit = 1u << 22;
/** Stamps this far apart still have differences, and differences of those, in 64 bits. */
constexpr int64_t kFarNs = int64_t{1} << 61;

struct Hint {
    int duration;
    uint32_t type;
};

struct Service {
    std::mutex lock;
    int appType;
    int nextHandle;
    int heldHandle;
    bool isAsked;
    std::vector<Hint> scalingHints;
};
Service gService;

/** What was posted to the two workers, and what the service holds of it. */
struct Posted {
    Hint sf;
    Hint qb;
    int sfCount;
    bool isBoostHeld;
};
Posted gPosted;
int64_t gNowNs;

uint32_t wordOf(float scale, uint32_t direction, uint32_t boostLevel) {
    const double thousandths = static_cast<double>(scale * 1000.0f);
    const double bounded = !(thousandths > 0) ? 0 : std::min(thousandths, 4294967295.0);
    return (static_cast<uint32_t>(bounded) & 0xffff) | direction << 16 | boostLevel << 19;
}

int perfHint(int hint, const char* package, int duration, int type) {
    const std::lock_guard lock(gService.lock);
    gService.isAsked = true;
    require(package == nullptr, "hints name no package");
    if (hint == android::kEnergyScalingHint) {
        gService.scalingHints.push_back({duration, static_cast<uint32_t>(type)});
        return gService.nextHandle;
    }
    require(hint == android::kRefreshRateHint && duration == 0, "the other hint is the rate's");
    require(type == 60 || type == 90 || type == 120, "the rate is one of three");
    return gService.heldHandle = gService.nextHandle;
}

int perfLockRel(int handle) {
    gService.isAsked = true;
    require(handle > 0 && handle == gService.heldHandle, "the handle held is released, once");
    gService.heldHandle = 0;
    return 0;
}

int perfGetFeedback(int query, const char* package) {
    gService.isAsked = true;
    require(query == android::kAppTypeQuery && package != nullptr, "a package is asked for");
    return gService.appType;
}

android::PerfSetting perfGetProp(const char* key, const char*) {
    const bool isList = std::string(key) == "vendor.perf.brevold.debug.layers";
    android::PerfSetting setting = {};
    strcpy(setting.text, isList ? "debug#0  x" : "1");
    return setting;
}

int isFeatureEnabled(int) {
    return 1;
}

/** What the workers sent against what was posted to them. */
void compareHints() {
    host::settle();
    const std::lock_guard lock(gService.lock);
    for (const Hint& hint : gService.scalingHints) {
        if (hint.duration == 0) {
            require(hint.type == static_cast<uint32_t>(gPosted.sfCount), "releases count boosts");
            gPosted.sfCount = 0;
            gPosted.isBoostHeld = false;
        } else if (hint.duration == 2000) {
            require(hint.type == gPosted.sf.type, "the boost's word is what was posted");
            require(!gPosted.isBoostHeld, "a boost is sent once");
            gPosted.isBoostHeld = true;
        } else {
            require(hint.type == (gPosted.qb.type | kQbChannelBit), "the word is what was posted");
            require(hint.duration == gPosted.qb.duration && hint.duration > 0, "the mode's time");
        }
    }
    gService.scalingHints.clear();
    require(android::gMode >= 0 && android::gMode <= 5, "the mode is one of six");
}

void switchFeatures(FuzzedDataProvider& input) {
    for (bool* feature : {&android::gScalingEnabled, &android::gJr10Enabled,
                          &android::gSmoothMotion, &android::gPfarDownEnabled, &android::gDebug}) {
        *feature = input.ConsumeIntegralInRange(0, 3) != 0;
    }
    android::gFpsSwitchEnabled = input.ConsumeBool() ? 1 : 0;
    android::gPerfHintUpdate = input.ConsumeBool() ? perfHint : nullptr;
    android::gPerfLockRel = input.ConsumeBool() ? perfLockRel : nullptr;
    android::gPerfGetFeedback = input.ConsumeIntegralInRange(0, 3) != 0 ? perfGetFeedback : nullptr;
}

int64_t anyPeriodNs(FuzzedDataProvider& input) {
    return input.ConsumeBool() ? input.PickValueInArray(kPeriodsNs)
                               : input.ConsumeIntegral<int64_t>();
}

int anyQueue(FuzzedDataProvider& input) {
    return input.ConsumeBool() ? input.ConsumeIntegralInRange(0, 4) : input.ConsumeIntegral<int>();
}

/** Near now, as stamps are; or far away. */
int64_t anyStampNs(FuzzedDataProvider& input) {
    if (!input.ConsumeBool()) return input.ConsumeIntegralInRange(-kFarNs, kFarNs);
    return gNowNs + input.ConsumeIntegralInRange<int64_t>(-50000000, 50000000);
}

std::string anyName(FuzzedDataProvider& input) {
    constexpr const char* kNames[] = {"com.example.a/Main#0", "com.example.b#1", "debug#0", ""};
    return input.ConsumeBool() ? input.PickValueInArray(kNames)
                               : input.ConsumeRandomLengthString(40);
}

void reportFrame(FuzzedDataProvider& input) {
    LayerFrameInfo info = {};
    info.skipLayerCheck = input.ConsumeIntegralInRange<uint8_t>(0, 7) == 0 ? 1 : 0;
    info.layerKeyA = input.ConsumeIntegralInRange(0, 1);
    info.lastMaxQueuedFrames = anyQueue(input);
    info.layerName = anyName(input);
    info.peerLayerName = input.ConsumeBool() ? info.layerName : anyName(input);
    info.qbTime = anyStampNs(input);
    info.lastQbTime = input.ConsumeBool() ? -1 : anyStampNs(input);
    info.sfTime = anyStampNs(input);
    info.refreshPeriod = anyPeriodNs(input);
    require(brevoldOnFrameAvailable(&info) == 0, "a report always returns 0");
}

/** A refresh tick, or so many that a window closes. */
void tick(FuzzedDataProvider& input) {
    const bool isWindow = input.ConsumeBool();
    const int64_t intervalNs = isWindow ? input.PickValueInArray(kPeriodsNs)
                                        : input.ConsumeIntegralInRange<int64_t>(-1000, 200000000);
    const int64_t ticks = isWindow ? 1000000000 / intervalNs + 2 : 1;
    for (int64_t i = 0; i < ticks; ++i) {
        host::setTimeNs(gNowNs += intervalNs);
        brevoldRefresh();
    }
    compareHints();
    if (android::gScalingEnabled) require(!gPosted.isBoostHeld, "a tick releases every boost");
}

void step(FuzzedDataProvider& input) {
    switch (input.ConsumeIntegralInRange(0, 11)) {
        case 0:
            return tick(input);
        case 1:
            require(brevoldScaling(anyQueue(input), input.ConsumeBool()) == 0, "gLock is released");
            return;
        case 2: {
            const int verdict = brevoldMonitor(anyQueue(input), anyPeriodNs(input));
            require(verdict == 0 || (verdict == 1 && android::gMode <= 1), "verdict in low modes");
            return;
        }
        case 3:
            return android::energyScaling(
                    input.ConsumeFloatingPoint<float>(), input.ConsumeIntegralInRange(0u, 3u),
                    input.ConsumeIntegralInRange(0u, 2u), input.ConsumeIntegralInRange(-1, 2));
        case 4:
            return android::modeMonitor(input.ConsumeIntegral<int64_t>());
        case 5:
            gService.appType = input.ConsumeIntegralInRange(-1, 3);
            gService.nextHandle = input.ConsumeIntegralInRange(-2, 9);
            return;
        case 6:
            return switchFeatures(input);
        case 7:
            return android::clearConfigs();
        default:
            return reportFrame(input);
    }
}

void releaseBoost() {
    android::releaseScaling();
    compareHints();
    require(!gPosted.isBoostHeld, "a boost that is withdrawn is released");
}

}  // namespace

/** Stands before the library's own, so that what it posts is seen. */
extern "C" void __real__ZN7android13energyScalingEfjji(float, unsigned, unsigned, int);
extern "C" void __wrap__ZN7android13energyScalingEfjji(float scale, unsigned direction,
                                                       unsigned boostLevel, int channel) {
    constexpr int kDurations[] = {-1, -1, 19, 13, 10, -1};
    if (android::gScalingEnabled && direction != 0) {
        const uint32_t word = wordOf(scale, direction, boostLevel);
        if (channel == 0) gPosted.sf = {2000, word};
        if (channel == 0 && boostLevel != 0) ++gPosted.sfCount;
        if (channel == 1) gPosted.qb = {kDurations[android::gMode], word};
    }
    __real__ZN7android13energyScalingEfjji(scale, direction, boostLevel, channel);
}

int property_get(const char*, char* value, const char*) {
    value[0] = '1';
    value[1] = '\0';
    return 1;
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    using brevold::fuzz::address;
    brevold::fuzz::gLibraries = {
            {android::kPerfClientLibrary,
             {{"perf_hint", address(perfHint)},
              {"perf_lock_rel", address(perfLockRel)},
              {"perf_get_feedback", address(perfGetFeedback)},
              {"perf_get_prop", address(perfGetProp)}}},
            {"libfeatgate_system.so", {{"IsFeatureEnabled", address(isFeatureEnabled)}}}};
    require(brevoldInit(), "everything is on");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    // The workers live as long as the process; all else begins as it was loaded.
    releaseBoost();
    android::clearConfigs();
    android::gCurrentLayer.clear();
    android::gRefreshRate = android::gRefreshRateHandle = 0;
    host::takeLog();
    host::takeTraceMarks();
    host::setTimeNs(gNowNs = 100000000000);
    gService.heldHandle = 0;
    gService.appType = 2;
    gService.nextHandle = 1;
    switchFeatures(input);
    while (input.remaining_bytes() > 0) {
        gService.isAsked = false;
        const bool isOff = !android::gScalingEnabled && !android::gJr10Enabled &&
                           android::gFpsSwitchEnabled == 0;
        step(input);
        compareHints();
        require(!isOff || !gService.isAsked, "with every feature off the service is not asked");
    }
    return 0;
}
