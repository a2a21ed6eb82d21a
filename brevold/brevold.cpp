#include "brevold/brevold.h"

#include <cutils/properties.h>
#include <dlfcn.h>

#include <cstring>

#include "brevold/platform.h"
#include "brevold/protocol.h"
#include "brevold/settings.h"
#include "brevold/state.h"

namespace android {

// Constructed in this order, and destroyed in reverse order when the process exits.
Mutex gLock;
Mutex gInitLock;
std::string gCurrentLayer;
sp<ScalingSyncThread> gSFThread;
sp<ScalingSyncThread> gQBThread;
std::vector<std::string> gDebugLayers;

bool gScalingEnabled;
bool gJr10Enabled;
bool gSmoothMotion;
bool gPfarDownEnabled;
bool gDebug;
int32_t gFpsSwitchEnabled;
bool gInitDone;

PerfGetFeedbackFn gPerfGetFeedback;
PerfGetPropFn gPerfGetProp;
PerfHintFn gPerfHintUpdate;
PerfLockRelFn gPerfLockRel;

int32_t gCurrentLayerKeyA;
int32_t gCurrentLayerKeyB;
bool gLayerUnchanged;
int32_t gAppType = kUnknownAppType;
bool gTargetApp;

int32_t gMode = kModeUnclassified;

bool gFpsWindowActive;
int64_t gWindowStart;
int32_t gFrameCount;
float gIntervalSum;
float gFps;
int32_t gDownCount;
int32_t gUpCount;
int32_t gIdleCount;

int64_t gLastFrameStamp;
int64_t gLastRefreshTime;
int64_t gVsyncPeriod;
bool gPrevQueueBusy;

int32_t gRefreshRate;
int32_t gRefreshRateHandle;

namespace {

constexpr int32_t kWorkerPriority = PRIORITY_URGENT_DISPLAY + PRIORITY_MORE_FAVORABLE;
static_assert(kWorkerPriority == -9);

void resetState() NO_THREAD_SAFETY_ANALYSIS {
    gAppType = kUnknownAppType;
    gMode = kModeUnclassified;
    gPrevQueueBusy = false;
    gLayerUnchanged = false;
    gTargetApp = false;
    gCurrentLayerKeyA = 0;
    gCurrentLayerKeyB = 0;
    gWindowStart = 0;
    gFpsWindowActive = false;
    gFrameCount = 0;
    gFps = 0.0f;
    gIntervalSum = 0.0f;
    gDownCount = 0;
    gUpCount = 0;
    gIdleCount = 0;
    gLastFrameStamp = 0;
    gLastRefreshTime = 0;
    gVsyncPeriod = 0;
    gInitDone = false;
    gJr10Enabled = false;
    gScalingEnabled = false;
    gFpsSwitchEnabled = 0;
    gSmoothMotion = false;
    gDebug = false;
    gPfarDownEnabled = false;
}

/** Returns a setting of the performance service; its text may lack the terminator there. */
PerfSetting readSetting(const char* key, const char* fallback) {
    const PerfSetting answer = gPerfGetProp(key, fallback);
    PerfSetting setting = {};
    memcpy(setting.text, answer.text, strnlen(answer.text, kSettingSize - 1));
    return setting;
}

struct AllowedFeatures {
    bool jankBoost;
    bool energyScaling;
};

AllowedFeatures queryFeatures() {
    using IsFeatureEnabledFn = int (*)(int feature);

    AllowedFeatures allowed = {};
    void* const handle = dlopen(kFeatureLibrary, RTLD_LAZY);
    if (handle == nullptr) return allowed;
    const auto isEnabled = reinterpret_cast<IsFeatureEnabledFn>(dlsym(handle, "IsFeatureEnabled"));
    if (isEnabled != nullptr) {
        allowed.jankBoost = isEnabled(kJankBoostFeature) != 0;
        allowed.energyScaling = isEnabled(kEnergyScalingFeature) != 0;
    }
    dlclose(handle);
    return allowed;
}

void readFeatureSettings(const AllowedFeatures& allowed) {
    const bool jr10 = isOn(readSetting(kJankBoostProperty, "1").text);
    const bool pfar = isOn(readSetting(kScalingProperty, "0").text);
    gDebug = isOn(readSetting(kDebugProperty, "0").text);
    gPfarDownEnabled = isOn(readSetting(kScalingDownProperty, "0").text);
    PerfSetting layers = readSetting(kDebugLayersProperty, "NONE");
    if (isLayerList(layers.text)) addDebugLayers(layers.text, gDebugLayers);
    gScalingEnabled = allowed.energyScaling && pfar;
    gJr10Enabled = allowed.jankBoost && jr10;
}

void startWorkers(void* perfClient) {
    gSFThread = new ScalingSyncThread(perfClient, kSfChannelName, gDebug);
    gQBThread = new ScalingSyncThread(perfClient, kQbChannelName, gDebug);
    gSFThread->run("Monitor0", kWorkerPriority, 0);
    gQBThread->run("Monitor1", kWorkerPriority, 0);
}

void initialise() REQUIRES(gInitLock) {
    resetState();

    char smoothMotion[kSettingSize];
    static_assert(kSettingSize == PROPERTY_VALUE_MAX);
    property_get(kSmoothMotionProperty, smoothMotion, "0");
    gSmoothMotion = isOn(smoothMotion);

    const AllowedFeatures allowed = queryFeatures();
    void* const perfClient = initPerfLock();

    if (gPerfGetProp != nullptr) {
        gFpsSwitchEnabled = isOn(readSetting(kFpsSwitchProperty, "0").text);
    }
    if (gPerfGetProp != nullptr && (allowed.jankBoost || allowed.energyScaling)) {
        readFeatureSettings(allowed);
        if (gScalingEnabled) startWorkers(perfClient);
    }
    gInitDone = true;
}

}  // namespace

void addDebugLayers(char* list, std::vector<std::string>& out) {
    splitLayerList(list, out);
}

bool isDebugLayer(std::string name) {
    return isListedLayer(name);
}

bool isListedLayer(const std::string& name) {
    for (const std::string& layer : gDebugLayers) {
        if (layer == name) return true;
    }
    return false;
}

void clearConfigs() {
    resetState();
}

}  // namespace android

using namespace android;

bool brevoldInit() {
    const ScopedLock lock(gInitLock);
    if (!gInitDone) initialise();
    return gJr10Enabled || gScalingEnabled || gFpsSwitchEnabled != 0;
}

bool brevoldCheck(const char* name) {
    return gScalingEnabled && isTargetAppWithoutLock() && name != nullptr &&
           strncmp(name, "sf", 2) == 0;
}
