#include <cerrno>
#include <cmath>
#include <cstring>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

constexpr int kSf = 0;
constexpr int kQb = 1;
constexpr size_t kSfThread = 0;
constexpr size_t kQbThread = 1;

class WorkerTest : public DeviceTest {
  protected:
    static Texts request(float scale, unsigned direction, unsigned boostLevel, int channel) {
        android::energyScaling(scale, direction, boostLevel, channel);
        return takeCalls();
    }
};

struct WordCase {
    float scale;
    unsigned direction;
    unsigned boostLevel;
    const char* word;
};

TEST_F(WorkerTest, QbTypeWordIsPackedUnmasked) {
    startTargetApp();
    measure(kPeriod60Ns);
    const WordCase cases[] = {
            {10.0f, 2, 2, "0x522710"},      {0.5f, 1, 0, "0x4101f4"},
            {0.0f, 1, 0, "0x410000"},       {-1.0f, 1, 0, "0x410000"},
            {NAN, 1, 0, "0x410000"},        {65.535f, 1, 0, "0x41ffff"},
            {65.536f, 1, 0, "0x410000"},    {4294967.0f, 1, 0, "0x41ff00"},
            {1e9f, 1, 0, "0x41ffff"},       {INFINITY, 1, 0, "0x41ffff"},
            {-INFINITY, 1, 0, "0x410000"},  {0.9999f, 1, 0, "0x4103e7"},
            {0.7f, 1, 0, "0x4102bc"},       {1.0f, 8, 0, "0x4803e8"},
            {1.0f, 8, 1, "0x4803e8"},       {1.0f, 4, 0, "0x4403e8"},
            {1.0f, 0x10001, 0, "0x4103e8"}, {1.0f, 1, 0x2000, "0x4103e8"},
    };
    for (const WordCase& c : cases) {
        EXPECT_EQ(request(c.scale, c.direction, c.boostLevel, kQb),
                  Texts{std::string("hint 4166 19 ") + c.word})
                << c.scale << ' ' << c.direction << ' ' << c.boostLevel;
    }
}

TEST_F(WorkerTest, QbDurationFollowsTheMode) {
    startTargetApp();
    EXPECT_EQ(request(0.5f, 1, 0, kQb), Texts{});
    EXPECT_EQ(takeLogTexts(), Texts{"mPerfHint is null."});
    const std::pair<int64_t, std::string> cases[] = {
            {kPeriod60Ns, "19"}, {kPeriod90Ns, "13"}, {kPeriod120Ns, "10"}};
    for (const auto& [intervalNs, duration] : cases) {
        measure(intervalNs);
        takeCalls();
        EXPECT_EQ(request(0.5f, 1, 0, kQb), Texts{"hint 4166 " + duration + " 0x4101f4"});
    }
}

TEST_F(WorkerTest, QbSendsTheLastRequestAtEveryWakeUp) {
    startTargetApp();
    measure(kPeriod60Ns);
    takeCalls();
    EXPECT_EQ(request(0.25f, 2, 2, kQb), Texts{"hint 4166 19 0x5200fa"});
    host::takeTraceMarks();
    host::wakeSpuriously(kQbThread);
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 19 0x5200fa"});
    EXPECT_EQ(takeLabels(), Texts{"energyScaling[Scale:0.25]"});
}

TEST_F(WorkerTest, SfBoostsOnceAndReleasesWithTheCount) {
    startTargetApp();
    EXPECT_EQ(request(10.0f, 2, 2, kSf), Texts{"hint 4166 2000 0x122710"});
    EXPECT_EQ(request(10.0f, 2, 2, kSf), Texts{});
    host::wakeSpuriously(kSfThread);
    EXPECT_EQ(takeCalls(), Texts{});
    EXPECT_EQ(takeLabels(), Texts{"energyScaling[jank]"});

    android::releaseScaling();
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 0 0x2"});
    EXPECT_EQ(takeLabels(), Texts{"energyScaling[jank]-rel"});
    const int signals = host::signalCount();
    android::releaseScaling();
    EXPECT_EQ(host::signalCount(), signals);
    EXPECT_EQ(takeCalls(), Texts{});

    host::wakeSpuriously(kSfThread);  // a release even with nothing boosted
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 0 0x0"});
    EXPECT_EQ(request(10.0f, 2, 2, kSf), Texts{"hint 4166 2000 0x122710"});
}

TEST_F(WorkerTest, ANewerRequestOverwritesAnUnsentOne) {
    startTargetApp();
    measure(kPeriod60Ns);
    takeCalls();
    host::holdWorkers();
    android::energyScaling(0.5f, 1, 0, kQb);
    android::energyScaling(0.25f, 1, 0, kQb);
    host::letWorkersGo();
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 19 0x4100fa"});
}

TEST_F(WorkerTest, ABoostRequestWhileTheReleaseIsUnsentIsOnlyCounted) {
    startTargetApp();
    request(10.0f, 2, 2, kSf);
    host::holdWorkers();
    android::releaseScaling();
    android::energyScaling(10.0f, 2, 2, kSf);
    host::letWorkersGo();
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 0 0x2"});
    host::wakeSpuriously(kSfThread);  // nothing is pending any more
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 0 0x0"});
}

TEST_F(WorkerTest, SfPlainRequestReleases) {
    startTargetApp();
    EXPECT_EQ(request(10.0f, 2, 2, kSf), Texts{"hint 4166 2000 0x122710"});
    EXPECT_EQ(request(1.0f, 1, 0, kSf), Texts{});  // still pending and boosted
    android::releaseScaling();
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 0 0x1"});
    EXPECT_EQ(request(1.0f, 1, 0, kSf), Texts{"hint 4166 0 0x0"});
}

TEST_F(WorkerTest, NothingIsSentBeforeTheFirstRequest) {
    startTargetApp();
    for (const size_t thread : {kSfThread, kQbThread}) {
        host::wakeSpuriously(thread);
        EXPECT_EQ(takeCalls(), Texts{});
        EXPECT_EQ(takeLogTexts(), Texts{"mPerfHint is null."});
    }
}

TEST_F(WorkerTest, DropsRequestsWithoutDirectionChannelOrFeature) {
    startTargetApp();
    measure(kPeriod60Ns);
    takeCalls();
    const int signals = host::signalCount();
    request(1.0f, 0, 2, kSf);
    request(1.0f, 0, 2, kQb);
    for (const int channel : {-1, 2, 7})
        request(1.0f, 1, 2, channel);
    android::clearConfigs();
    request(1.0f, 2, 2, kSf);
    request(1.0f, 2, 2, kQb);
    EXPECT_EQ(host::signalCount(), signals);
    EXPECT_TRUE(takeLogTexts().size() == 1);  // the measuring window's line
}

TEST_F(WorkerTest, ReleaseWorksWithTheFeatureOff) {
    startTargetApp();
    EXPECT_EQ(request(10.0f, 2, 2, kSf), Texts{"hint 4166 2000 0x122710"});
    android::clearConfigs();
    android::releaseScaling();
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 0 0x1"});
}

TEST_F(WorkerTest, AFailedWaitEndsTheThreadForGood) {
    startTargetApp();
    host::failWait(kQbThread, EINVAL);
    host::settle();
    EXPECT_EQ(takeLogTexts(), (Texts{std::string("error waiting for new events: ") +
                                     strerror(EINVAL) + " (" + std::to_string(-EINVAL) + ")"}));
    EXPECT_EQ(request(1.0f, 1, 0, kQb), Texts{});
    EXPECT_EQ(request(10.0f, 2, 2, kSf), Texts{"hint 4166 2000 0x122710"});
}

TEST_F(WorkerTest, WithoutDebugThereAreNoSections) {
    provideClient();
    provideFeatures();
    switchEverythingOn();
    gDevice.properties["vendor.perf.brevold.debug"] = "0";
    initialise();
    EXPECT_EQ(request(10.0f, 2, 2, kSf), Texts{"hint 4166 2000 0x122710"});
    EXPECT_EQ(takeLabels(), Texts{});
}

TEST_F(WorkerTest, SectionsWantTheTag) {
    startTargetApp();
    host::setEnabledTraceTags(~uint64_t{1});
    EXPECT_EQ(request(10.0f, 2, 2, kSf), Texts{"hint 4166 2000 0x122710"});
    EXPECT_TRUE(host::takeTraceMarks().empty());
}

}  // namespace
}  // namespace brevold::test
