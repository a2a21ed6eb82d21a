// Initialisation: settings, features and missing functions, decided as they read.

#include <cutils/properties.h>
#include <utils/Thread.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <sstream>
#include <string>

#include "brevold/brevold.h"
#include "brevold/state.h"
#include "fuzz/fuzz.h"

namespace {

using brevold::fuzz::address;
using brevold::fuzz::gLibraries;
using brevold::fuzz::require;

constexpr char kFeatureLibrary[] = "libfeatgate_system.so";

struct Device {
    std::map<std::string, std::string> settings;
    bool allowed[2];
};

Device gDevice;
int gThreadsRun;

constexpr const char* kSettings[] = {
        "vendor.display.use_smooth_motion", "vendor.perf.fps_switch.enable",
        "vendor.perf.jr10.enable",          "vendor.perf.pfar.enable",
        "vendor.perf.brevold.debug",        "vendor.perf.pfar.down.enable",
        "vendor.perf.brevold.debug.layers"};
std::string settingOf(const std::string& key, const char* fallback) {
    const auto found = gDevice.settings.find(key);
    return found == gDevice.settings.end() ? fallback : found->second;
}

int getFeedback(int, const char*) {
    return 0;
}

android::PerfSetting getProp(const char* key, const char* fallback) {
    android::PerfSetting answer;
    memset(answer.text, '1', sizeof(answer.text));  // not terminated where a text fills it
    const std::string text = settingOf(key, fallback);
    memcpy(answer.text, text.c_str(), std::min(text.size() + 1, sizeof(answer.text)));
    return answer;
}

int hint(int, const char*, int, int) {
    return 0;
}

int lockRel(int) {
    return 0;
}

int isFeatureEnabled(int feature) {
    require(feature == 4 || feature == 5, "only two features are asked for");
    return gDevice.allowed[feature - 4] ? 1 : 0;
}

const std::map<std::string, std::map<std::string, void*>> kLibraries = {
        {android::kPerfClientLibrary,
         {{"perf_get_feedback", address(getFeedback)},
          {"perf_get_prop", address(getProp)},
          {"perf_hint", address(hint)},
          {"perf_lock_rel", address(lockRel)}}},
        {kFeatureLibrary, {{"IsFeatureEnabled", address(isFeatureEnabled)}}}};

bool isOn(const char* key, const char* fallback) {
    return atoi(settingOf(key, fallback).substr(0, android::kSettingSize - 1).c_str()) == 1;
}

void initialiseAndCompare() {
    std::vector<std::string> layers = android::gDebugLayers;
    gThreadsRun = 0;
    const bool anyFeature = brevoldInit();

    const auto has = [](const char* library, const char* function) {
        return gLibraries.count(library) != 0 && gLibraries[library].count(function) != 0;
    };
    const bool canRead = has(android::kPerfClientLibrary, "perf_get_prop");
    const bool canAsk = has(kFeatureLibrary, "IsFeatureEnabled");
    const bool jankBoost = canAsk && gDevice.allowed[0];
    const bool scaling = canAsk && gDevice.allowed[1];
    const bool readsAll = canRead && (jankBoost || scaling);
    const bool jr10On = readsAll && jankBoost && isOn("vendor.perf.jr10.enable", "1");
    const bool scalingOn = readsAll && scaling && isOn("vendor.perf.pfar.enable", "0");
    const bool fpsOn = canRead && isOn("vendor.perf.fps_switch.enable", "0");
    require(android::gJr10Enabled == jr10On, "jank boost as set");
    require(android::gScalingEnabled == scalingOn, "energy scaling as set");
    require(android::gFpsSwitchEnabled == (fpsOn ? 1 : 0), "refresh-rate hint as set");
    require(anyFeature == (jr10On || scalingOn || fpsOn), "initialisation tells of any feature");
    require(android::gDebug == (readsAll && isOn("vendor.perf.brevold.debug", "0")), "debug");
    require(android::gPfarDownEnabled == (readsAll && isOn("vendor.perf.pfar.down.enable", "0")),
            "scaling down as set");
    require(android::gSmoothMotion == isOn("vendor.display.use_smooth_motion", "0"), "smooth");
    require(gThreadsRun == (scalingOn ? 2 : 0), "workers with energy scaling only");

    const std::string list = settingOf("vendor.perf.brevold.debug.layers", "NONE")
                                     .substr(0, android::kSettingSize - 1);
    if (readsAll && list.compare(0, 4, "NONE") != 0) {
        std::istringstream names(list.c_str());
        for (std::string name; std::getline(names, name, ' ');)
            layers.push_back(name);
    }
    require(android::gDebugLayers == layers, "the list is split at blanks and appended");
    for (const std::string& layer : layers)
        require(android::isDebugLayer(layer), "listed layers are debug layers");
}

}  // namespace

extern "C" int __android_log_print(int, const char*, const char*, ...) {
    return 0;
}

int property_get(const char* key, char* value, const char* fallback) {
    const std::string text = settingOf(key, fallback).substr(0, PROPERTY_VALUE_MAX - 1);
    memcpy(value, text.c_str(), text.size() + 1);
    return static_cast<int>(text.size());
}

/** Workers that never run, so that an input leaves no thread. */
android::status_t android::Thread::run(const char*, int32_t, size_t) {
    ++gThreadsRun;
    return OK;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    android::clearConfigs();
    android::gDebugLayers.clear();
    android::gPerfGetProp = nullptr;
    const int rounds = input.ConsumeIntegralInRange(1, 2);
    for (int i = 0; i < rounds; ++i) {
        gDevice = {};
        gLibraries.clear();
        for (const auto& [library, functions] : kLibraries) {
            if (!input.ConsumeBool()) continue;
            for (const auto& function : functions) {
                if (gLibraries[library]; input.ConsumeBool()) gLibraries[library].insert(function);
            }
        }
        for (bool& allowed : gDevice.allowed)
            allowed = input.ConsumeBool();
        for (const char* key : kSettings) {
            if (!input.ConsumeBool()) continue;
            gDevice.settings[key] =
                    input.ConsumeBool() ? "1" : input.ConsumeRandomLengthString(100);
        }
        // A client library that has gone keeps the functions that it had.
        if (gLibraries.count(android::kPerfClientLibrary) == 0) android::gPerfGetProp = nullptr;
        initialiseAndCompare();
        android::clearConfigs();
    }
    return 0;
}
