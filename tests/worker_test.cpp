#include <cerrno>
#include <cmath>
#include <cstring>

#include "tests/test_device.h"

using namespace brevold::test;

using WorkerTest = TargetAppTest;

constexpr char kHalf[] = "hint 4166 19 0x4101f4";

static std::string requestBoost() {
    return request(10.0f, 2, 2, kSf);
}

static std::string release() {
    android::releaseScaling();
    return takeCalls();
}

TEST_F(WorkerTest, QbTypeWordIsPackedUnmasked) {
    measure(kPeriod60Ns);
    const std::tuple<float, unsigned, unsigned, std::string> rows[] = {
            {10.0f, 2, 2, "0x522710"},    {0.5f, 1, 0, "0x4101f4"},
            {0.0f, 1, 0, "0x410000"},     {-1.0f, 1, 0, "0x410000"},
            {NAN, 1, 0, "0x410000"},      {65.535f, 1, 0, "0x41ffff"},
            {65.536f, 1, 0, "0x410000"},  {4294967.0f, 1, 0, "0x41ff00"},
            {1e9f, 1, 0, "0x41ffff"},     {-INFINITY, 1, 0, "0x410000"},
            {0.9999f, 1, 0, "0x4103e7"},  {0.7f, 1, 0, "0x4102bc"},
            {1.0f, 8, 0, "0x4803e8"},     {1.0f, 8, 1, "0x4803e8"},
            {1.0f, 4, 0, "0x4403e8"},     {1.0f, 0x10001, 0, "0x4103e8"},
            {1.0f, 1, 0x10, "0xc103e8"},  {1.0f, 1, 0x2000, "0x4103e8"},
            {0.001f, 1, 0, "0x410001"},   {4294967.5f, 1, 0, "0x41ffff"},
            {INFINITY, 1, 0, "0x41ffff"},
    };
    for (const auto& [scale, direction, boostLevel, word] : rows)
        EXPECT_EQ(request(scale, direction, boostLevel, kQb), "hint 4166 19 " + word) << scale;
    const std::string labels = takeLabels();
    EXPECT_EQ(labels.substr(labels.rfind(';')), "; energyScaling[Scale:INF]");
}

TEST_F(WorkerTest, SfBoostsOnceAndReleasesWithTheCount) {
    EXPECT_EQ(requestBoost(), kBoostHint);
    EXPECT_EQ(requestBoost(), "");
    EXPECT_EQ(request(1.0f, 1, 0, kSf), "");  // not a boost; the pending one has been sent
    EXPECT_EQ(wake(kSf), "");
    EXPECT_EQ(takeLabels(), "energyScaling[jank]");
    EXPECT_EQ(release(), "hint 4166 0 0x2");
    EXPECT_EQ(takeLabels(), "energyScaling[jank]-rel");
    const int signals = host::signalCount();
    EXPECT_EQ(release(), "");
    EXPECT_EQ(host::signalCount(), signals);

    EXPECT_EQ(wake(kSf), "hint 4166 0 0x0");  // a release even without a boost
    EXPECT_EQ(request(1.0f, 1, 0, kSf), "hint 4166 0 0x0");
    EXPECT_EQ(request(10.0f, 2, 1, kSf), "hint 4166 2000 0xa2710");
    // A boost requested before the release is sent is only counted.
    host::holdWorkers();
    android::releaseScaling();
    android::energyScaling(10.0f, 2, 2, kSf);
    host::releaseWorkers();
    EXPECT_EQ(takeCalls(), "hint 4166 0 0x2");
    EXPECT_EQ(wake(kSf), "hint 4166 0 0x0");  // nothing is pending

    EXPECT_EQ(requestBoost(), kBoostHint);
    android::clearConfigs();
    EXPECT_EQ(release(), "hint 4166 0 0x1");  // even with the feature off
}

TEST_F(WorkerTest, NothingIsSentBeforeTheFirstRequestOrWithoutAMode) {
    EXPECT_EQ(wake(kSf) + wake(kQb), "");
    EXPECT_FALSE(hasMode());
    EXPECT_EQ(takeLogTexts(), "mPerfHint is null.; mPerfHint is null.; mPerfHint is null.");
}

TEST_F(WorkerTest, DropsRequestsWithoutDirectionChannelOrFeature) {
    const int signals = host::signalCount();
    for (const int channel : {-1, kSf, kQb, 2, 7})
        request(1.0f, channel == kSf || channel == kQb ? 0 : 1, 2, channel);
    android::clearConfigs();
    for (const int channel : {kSf, kQb})
        request(1.0f, 2, 2, channel);
    EXPECT_EQ(host::signalCount(), signals);
}

TEST_F(WorkerTest, AFailedWaitEndsTheThread) {
    host::failWait(kQb, EINVAL);
    host::settle();
    EXPECT_EQ(takeLogTexts(), std::string("error waiting for new events: ") + strerror(EINVAL) +
                                      " (" + std::to_string(-EINVAL) + ")");
    EXPECT_EQ(request(1.0f, 1, 0, kQb), "");
    EXPECT_EQ(requestBoost(), kBoostHint);
    EXPECT_EQ(takeLogTexts(), "");
}

TEST_F(WorkerTest, SectionsRequireTheTag) {
    host::setEnabledTraceTags(~uint64_t{1});
    EXPECT_EQ(requestBoost(), kBoostHint);
    EXPECT_TRUE(host::takeTraceMarks().empty());
}

TEST_F(WorkerTest, AHintInProgressSurvivesANewInitialisation) {
    measure(kPeriod60Ns);
    startHint(kQb);
    android::clearConfigs();
    EXPECT_TRUE(brevoldInit());
    endHint();
    EXPECT_EQ(takeCalls(), kHalf);
    takeLogTexts();
    EXPECT_EQ(wake(kSf) + wake(kQb), kHalf);
    EXPECT_EQ(takeLogTexts(), "mPerfHint is null.");
    EXPECT_EQ(requestBoost(), kBoostHint);
}
