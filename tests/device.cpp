#include "tests/device.h"

#include <cutils/properties.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "brevold/perf_client.h"

namespace brevold::test {

Device gDevice;

static std::string propertyOf(const std::string& key, const std::string& fallback) {
    append(gDevice.reads, key + "=" + fallback);
    if (gDevice.properties.count(key) != 0) return gDevice.properties[key];
    return gDevice.isOn && fallback != "NONE" ? "1" : fallback;
}

void append(std::string& list, const std::string& text) {
    list += (list.empty() ? "" : "; ") + text;
}

std::string takeCalls() {
    host::settle();
    return std::exchange(gDevice.calls, {});
}

}  // namespace brevold::test

using namespace brevold::test;

int property_get(const char* key, char* value, const char* fallback) {
    return snprintf(value, PROPERTY_VALUE_MAX, "%s", propertyOf(key, fallback).c_str());
}

extern "C" {

int test_perf_hint(int hint, const char* package, int duration, int type) {
    if (gDevice.onHint != nullptr) return gDevice.onHint(hint, duration, type);
    char text[80];
    snprintf(text, sizeof(text), "hint %d %s%d 0x%x", hint, package == nullptr ? "" : package,
             duration, static_cast<unsigned>(type));
    append(gDevice.calls, text);
    const int handle = gDevice.nextHandle > 0 ? gDevice.nextHandle++ : gDevice.nextHandle;
    if (gDevice.duringCall != nullptr) gDevice.duringCall();
    return handle;
}

android::PerfSetting test_perf_get_prop(const char* key, const char* fallback) {
    android::PerfSetting answer;
    // Not terminated if the text fills the record, so the library must limit its copy.
    memset(answer.text, 'x', sizeof(answer.text));
    const std::string text = propertyOf(key, fallback);
    memcpy(answer.text, text.c_str(), std::min(text.size() + 1, sizeof(answer.text)));
    return answer;
}

int test_perf_lock_rel(int handle) {
    append(gDevice.calls, "release " + std::to_string(handle));
    return -1;
}

int test_perf_get_feedback(int query, const char* package) {
    append(gDevice.calls, "query " + std::to_string(query) + " " + package);
    if (gDevice.duringCall != nullptr) gDevice.duringCall();
    return gDevice.appType;
}

int test_IsFeatureEnabled(int feature) {
    append(gDevice.reads, "feature " + std::to_string(feature));
    return gDevice.features.count(feature) != 0 ? -1 : 0;
}
}
