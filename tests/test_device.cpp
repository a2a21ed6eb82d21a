#include "tests/test_device.h"

#include <dlfcn.h>
#include <semaphore.h>

namespace brevold::test {

namespace {

int64_t gNowNs;
sem_t gHintStarted, gHintMayEnd;

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
