#include "tests/test_device.h"

#include <cutils/properties.h>
#include <dlfcn.h>

#include <cstring>

#include "brevold/perf_client.h"

namespace brevold::test {

Device gDevice;

namespace {

int64_t gNowNs;

void* provide(const std::string& path) {
    void* const handle = dlopen((BREVOLD_TEST_STANDINS "/" + path).c_str(), RTLD_NOW);
    EXPECT_NE(handle, nullptr) << dlerror();
    return handle;
}

std::string propertyOf(const char* key, const char* fallback) {
    gDevice.reads.push_back(std::string(key) + "=" + fallback);
    const auto found = gDevice.properties.find(key);
    return found == gDevice.properties.end() ? fallback : found->second;
}

}  // namespace

DeviceTest::DeviceTest() {
    gNowNs = 100 * kSecondNs;
    host::setTimeNs(gNowNs);
}

void* DeviceTest::provideClient(const std::string& variant) {
    return provide("perfd_" + variant + "/libvnx-perfd-client_system.so");
}

void* DeviceTest::provideFeatures(const std::string& variant) {
    return provide("featgate_" + variant + "/libfeatgate_system.so");
}

void DeviceTest::switchEverythingOn() {
    for (const char* key : {"vendor.display.use_smooth_motion", "vendor.perf.fps_switch.enable",
                            "vendor.perf.jr10.enable", "vendor.perf.pfar.enable",
                            "vendor.perf.brevold.debug", "vendor.perf.pfar.down.enable"}) {
        gDevice.properties[key] = "1";
    }
    gDevice.features = {4, 5};
}

bool DeviceTest::initialise() {
    const bool anyFeature = brevoldInit();
    host::settle();
    return anyFeature;
}

void DeviceTest::restartWith(const std::string& layer) {
    android::clearConfigs();
    initialise();
    for (int i = 0; i < 2; ++i)
        report(1, 0, 0, kPeriod60Ns, layer);
    takeCalls();
}

void DeviceTest::startTargetApp() {
    provideClient();
    provideFeatures();
    switchEverythingOn();
    ASSERT_TRUE(initialise());
    report(1, 0, 0, kPeriod60Ns);
    takeCalls();
    host::takeTraceMarks();
}

Texts DeviceTest::takeCalls() {
    host::settle();
    return std::exchange(gDevice.calls, {});
}

Texts DeviceTest::takeLogTexts() {
    Texts texts;
    for (const host::LogLine& line : host::takeLog()) {
        EXPECT_EQ(line.priority, 6);
        EXPECT_EQ(line.tag, "Brevold");
        texts.push_back(line.text);
    }
    return texts;
}

Texts DeviceTest::takeLabels() {
    Texts labels;
    bool isOpen = false;
    for (const host::TraceMark& mark : host::takeTraceMarks()) {
        EXPECT_EQ(mark.isBegin, !isOpen) << mark.label;
        isOpen = mark.isBegin;
        if (mark.isBegin) labels.push_back(mark.label);
    }
    EXPECT_FALSE(isOpen);
    return labels;
}

void DeviceTest::advance(int64_t byNs) {
    gNowNs += byNs;
    host::setTimeNs(gNowNs);
}

void DeviceTest::measure(int64_t intervalNs) {
    advance(kSecondNs);
    brevoldRefresh();
    for (int64_t elapsedNs = 0; elapsedNs <= kSecondNs + intervalNs; elapsedNs += intervalNs) {
        advance(intervalNs);
        brevoldRefresh();
    }
    host::settle();
}

void DeviceTest::report(int32_t queuedFrames, int64_t diffSFToQBNs, int64_t diffQBNs,
                        int64_t periodNs, const std::string& name) {
    LayerFrameInfo info = {};
    info.lastMaxQueuedFrames = queuedFrames;
    info.layerName = info.peerLayerName = name;
    info.qbTime = gNowNs;
    info.lastQbTime = gNowNs - diffQBNs;
    info.sfTime = gNowNs - diffSFToQBNs;
    info.refreshPeriod = periodNs;
    EXPECT_EQ(brevoldOnFrameAvailable(&info), 0);
    host::settle();
}

}  // namespace brevold::test

using brevold::test::gDevice;

int property_get(const char* key, char* value, const char* fallback) {
    const std::string text = brevold::test::propertyOf(key, fallback);
    const size_t length = text.copy(value, PROPERTY_VALUE_MAX - 1);
    value[length] = '\0';
    return static_cast<int>(length);
}

extern "C" {

int testPerfHint(int hint, const char* package, int duration, int type) {
    if (gDevice.onHint != nullptr) return gDevice.onHint(hint, duration, type);
    char text[80];
    snprintf(text, sizeof(text), "hint %d %s%d 0x%x", hint, package == nullptr ? "" : package,
             duration, static_cast<unsigned>(type));
    gDevice.calls.push_back(text);
    const int handle = gDevice.nextHandle > 0 ? gDevice.nextHandle++ : gDevice.nextHandle;
    if (gDevice.duringHint != nullptr) gDevice.duringHint();
    return handle;
}

android::PerfSetting testPerfGetProp(const char* key, const char* fallback) {
    android::PerfSetting answer;
    // Not terminated where the text fills the record: the library has to bound its copy.
    memset(answer.text, 'x', sizeof(answer.text));
    const std::string text = brevold::test::propertyOf(key, fallback);
    memcpy(answer.text, text.c_str(), std::min(text.size() + 1, sizeof(answer.text)));
    return answer;
}

int testPerfLockRel(int handle) {
    gDevice.calls.push_back("release " + std::to_string(handle));
    return -1;
}

int testPerfGetFeedback(int query, const char* package) {
    gDevice.calls.push_back("query " + std::to_string(query) + " " + package);
    return gDevice.appType;
}

int testIsFeatureEnabled(int feature) {
    gDevice.reads.push_back("feature " + std::to_string(feature));
    return gDevice.features.count(feature) != 0 ? -1 : 0;
}
}
