#include "tests/test_device.h"

#include <cutils/properties.h>
#include <dlfcn.h>
#include <semaphore.h>

#include <cstring>

#include "brevold/perf_client.h"

namespace brevold::test {

Device gDevice;

namespace {

int64_t gNowNs;
sem_t gHintStarted, gHintMayEnd;

void append(std::string& list, const std::string& text) {
    list += (list.empty() ? "" : "; ") + text;
}

std::string propertyOf(const std::string& key, const std::string& fallback) {
    append(gDevice.reads, key + "=" + fallback);
    if (gDevice.properties.count(key) != 0) return gDevice.properties[key];
    return gDevice.isOn && fallback != "NONE" ? "1" : fallback;
}

}  // namespace

void TargetAppTest::SetUp() {
    provide(kClient);
    provide(kFeatures);
    ASSERT_TRUE(brevoldInit());
    submit(frame());
    submit(frame());
    takeLabels();
}

void* provide(const std::string& library, const std::string& without) {
    const std::string folder = BREVOLD_TEST_FAKES "/without_" + without + "/";
    void* const handle = dlopen((folder + library).c_str(), RTLD_NOW);
    EXPECT_NE(handle, nullptr) << dlerror();
    return handle;
}

bool restart() {
    android::clearConfigs();
    const bool anyFeature = brevoldInit();
    host::settle();
    return anyFeature;
}

void restartWith(const std::string& layer) {
    restart();
    submit(frame(0, layer));
    submit(frame(0, layer));
}

std::string takeCalls() {
    host::settle();
    return std::exchange(gDevice.calls, {});
}

std::string takeLogTexts() {
    std::string texts;
    for (const host::LogLine& line : host::takeLog()) {
        EXPECT_EQ(line.priority, 6);
        EXPECT_EQ(line.tag, "Brevold");
        append(texts, line.text);
    }
    return texts;
}

std::string takeLabels() {
    std::string labels;
    bool isOpen = false;
    for (const host::TraceMark& mark : host::takeTraceMarks()) {
        EXPECT_EQ(mark.isBegin, !isOpen) << mark.label;
        isOpen = mark.isBegin;
        if (mark.isBegin) append(labels, mark.label);
    }
    EXPECT_FALSE(isOpen);
    return labels;
}

void advance(int64_t byNs) {
    gNowNs += byNs;
    host::setTimeNs(gNowNs);
}

void tick(int64_t intervalNs, int count) {
    for (; count > 0; --count) {
        advance(intervalNs);
        brevoldRefresh();
    }
}

void measure(int64_t intervalNs) {
    tick(kSecondNs);
    tick(intervalNs, static_cast<int>(kSecondNs / intervalNs) + 2);
    takeCalls();
}

LayerFrameInfo frame(int32_t queuedFrames, const std::string& name, int64_t periodNs) {
    LayerFrameInfo info = {};
    info.lastMaxQueuedFrames = queuedFrames;
    info.layerName = info.peerLayerName = name;
    info.sfTime = 1;
    info.qbTime = 3000001;
    info.lastQbTime = info.qbTime - 8000000;
    info.refreshPeriod = periodNs;
    return info;
}

std::string submit(LayerFrameInfo info) {
    EXPECT_EQ(brevoldOnFrameAvailable(&info), 0);
    return takeCalls();
}

std::string request(float scale, unsigned direction, unsigned boostLevel, int channel) {
    android::energyScaling(scale, direction, boostLevel, channel);
    return takeCalls();
}

std::string wake(size_t thread) {
    host::wakeSpuriously(thread);
    return takeCalls();
}

void startHint(int channel) {
    sem_init(&gHintStarted, 0, 0);
    sem_init(&gHintMayEnd, 0, 0);
    gDevice.duringCall = [] {
        gDevice.duringCall = nullptr;
        sem_post(&gHintStarted);
        sem_wait(&gHintMayEnd);
    };
    android::energyScaling(0.5f, 1, channel == kSf ? 2 : 0, channel);
    sem_wait(&gHintStarted);
}

void endHint() {
    sem_post(&gHintMayEnd);
}

bool hasMode() {
    return !request(1.0f, 1, 0, kQb).empty();
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
