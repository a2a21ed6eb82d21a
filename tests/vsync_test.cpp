#include "tests/test_device.h"

using namespace brevold::test;

using VsyncTest = TargetAppTest;

static std::string boost(int queuedFrames, int suppress = 0) {
    EXPECT_EQ(brevoldScaling(queuedFrames, suppress), 0);
    const std::string calls = takeCalls();
    android::releaseScaling();
    takeCalls();
    return calls;
}

TEST_F(VsyncTest, ModePeriodAndQueueDecide) {
    const std::tuple<int, int64_t, int64_t, int, std::string> rows[] = {
            {60, 16000001, 16999999, 2, "hint 4166 19 0x4103e8"},
            {90, 10800001, 11699999, 2, "hint 4166 13 0x4103e8"},
            {120, 8000001, 8999999, 2, "hint 4166 10 0x4103e8"},
            {30, 16000001, 16999999, 3, ""},
            {24, 1, 0, 2, ""},
            {40, 1, 0, 2, ""}};
    for (const auto& [fps, minNs, maxNs, minQueuedForBoost, downHint] : rows) {
        measure(kSecondNs / fps);
        advance(1000000);
        for (const int64_t periodNs :
             {16000000l, 16000001l, 16999999l, 17000000l, 10800000l, 10800001l, 11699999l,
              11700000l, 8000000l, 8000001l, 8999999l, 9000000l, -16666666l, 0l, INT64_MIN}) {
            SCOPED_TRACE(std::to_string(fps) + " " + std::to_string(periodNs));
            const bool is60Hz = periodNs >= 16000001 && periodNs <= 16999999;
            EXPECT_EQ(brevoldMonitor(0, periodNs), is60Hz && fps <= 30 ? 1 : 0);
            const bool isInBand = periodNs >= minNs && periodNs <= maxNs;
            android::brevoldBufferMonitor(2, kLayer, kLayer, 0, kSecondNs, 1, 0, periodNs);
            EXPECT_EQ(takeCalls(), isInBand ? downHint : "");
            for (const int queued : {INT_MIN, 1, 2, 3})
                EXPECT_EQ(boost(queued), isInBand && queued >= minQueuedForBoost ? kBoostHint : "");
            EXPECT_EQ(boost(3, 1) + boost(3, -1), "");
        }
    }
}

TEST_F(VsyncTest, VerdictRequiresATickAndAQueueNotBusyTwice) {
    android::modeMonitor(100000000);
    advance(kSecondNs + 1);
    android::modeMonitor(100000000);  // mode 0, without a tick
    host::setTimeNs(5000000);
    EXPECT_EQ(brevoldMonitor(0, kPeriod60Ns), 0);
    measure(kSecondNs / 30);
    const std::pair<int64_t, int> steps[] = {{0, 0}, {1, 1},         {17999998, 1},
                                             {1, 0}, {-20000000, 0}, {3000000, 1}};
    for (const auto& [byNs, verdict] : steps) {
        advance(byNs);
        EXPECT_EQ(brevoldMonitor(1, kPeriod60Ns), verdict) << byNs;
    }
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 1);
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 0);
    EXPECT_EQ(brevoldMonitor(1, kPeriod60Ns), 1);
    EXPECT_EQ(brevoldMonitor(2, 0), 0);  // the queue still counts as busy
    EXPECT_EQ(brevoldMonitor(INT_MAX, kPeriod60Ns), 0);
    EXPECT_EQ(brevoldMonitor(INT_MIN, kPeriod60Ns), 1);
    host::setTimeNs(INT64_MIN);
    EXPECT_ABORT(brevoldMonitor(0, kPeriod60Ns));
}

TEST_F(VsyncTest, AResetForgetsAllButTheNameOfTheLayer) {
    android::brevoldLayerStatusCheck(false, kLayer, 1, 1);
    restart();
    measure(kPeriod60Ns);
    android::brevoldLayerStatusCheck(false, kLayer, 0, 0);
    EXPECT_TRUE(hasMode());
    restart();
    EXPECT_FALSE(hasMode());
    brevoldMonitor(2, 0);
    restartWith("com.example.other#0");
    measure(kSecondNs / 30);
    advance(1000000);
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 1);

    restart();
    android::brevoldAppTypeCheck(kLayer);
    android::brevoldLayerStatusCheck(false, kLayer, 0, 0);
    measure(kPeriod60Ns);
    const auto monitor = [] {
        android::brevoldBufferMonitor(2, kLayer, kLayer, 0, kSecondNs, 1, 0, kPeriod60Ns);
        return takeCalls();
    };
    EXPECT_EQ(boost(3), "");  // the refresh period is not known
    EXPECT_EQ(monitor(), "");
    EXPECT_NE(monitor(), "");
}
