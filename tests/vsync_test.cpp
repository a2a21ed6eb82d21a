#include <climits>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

class VsyncTest : public DeviceTest {
  protected:
    void SetUp() override {
        startTargetApp();
        report(1, 0, 0, kPeriod60Ns);  // the layer is unchanged now
    }

    /** In mode 1, one millisecond past a tick. */
    static void makeVerdictHold() {
        measure(kSecondNs / 30);
        advance(1000000);
    }

    static Texts boost(int queuedFrames, int suppress = 0) {
        EXPECT_EQ(brevoldScaling(queuedFrames, suppress), 0);
        Texts calls = takeCalls();
        android::releaseScaling();
        takeCalls();
        return calls;
    }
};

TEST_F(VsyncTest, VerdictBoundsOfPeriod) {
    makeVerdictHold();
    const std::pair<int64_t, int> cases[] = {{16000000, 0},  {16000001, 1},    {16999999, 1},
                                             {17000000, 0},  {kPeriod90Ns, 0}, {0, 0},
                                             {-16666666, 0}, {INT64_MIN, 0}};
    for (const auto& [periodNs, verdict] : cases) {
        EXPECT_EQ(brevoldMonitor(1, periodNs), verdict) << periodNs;
    }
}

TEST_F(VsyncTest, VerdictBoundsOfTheTimeSinceTheTick) {
    measure(kSecondNs / 30);
    EXPECT_EQ(brevoldMonitor(1, kPeriod60Ns), 0);
    advance(1);
    EXPECT_EQ(brevoldMonitor(1, kPeriod60Ns), 1);
    advance(17999998);
    EXPECT_EQ(brevoldMonitor(1, kPeriod60Ns), 1);
    advance(1);
    EXPECT_EQ(brevoldMonitor(1, kPeriod60Ns), 0);
    advance(-20000000);
    EXPECT_EQ(brevoldMonitor(1, kPeriod60Ns), 0);
}

TEST_F(VsyncTest, VerdictFailsWhenTheQueueIsBusyTwice) {
    makeVerdictHold();
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 1);
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 0);
    EXPECT_EQ(brevoldMonitor(1, kPeriod60Ns), 1);
    EXPECT_EQ(brevoldMonitor(INT_MAX, 0), 0);  // counts as busy even so
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 0);
    EXPECT_EQ(brevoldMonitor(INT_MIN, kPeriod60Ns), 1);
}

TEST_F(VsyncTest, VerdictWantsALowMode) {
    const std::pair<int, int> cases[] = {{24, 1}, {30, 1}, {60, 0}, {90, 0}, {120, 0}, {40, 0}};
    for (const auto& [fps, verdict] : cases) {
        measure(kSecondNs / fps);
        advance(1000000);
        EXPECT_EQ(brevoldMonitor(0, kPeriod60Ns), verdict) << fps;
    }
}

TEST_F(VsyncTest, VerdictWantsTheTargetAppOnAnUnchangedLayer) {
    makeVerdictHold();
    ASSERT_EQ(brevoldMonitor(0, kPeriod60Ns), 1);
    report(1, 0, 0, kPeriod60Ns, "com.example.other#0");
    makeVerdictHold();
    EXPECT_EQ(brevoldMonitor(0, kPeriod60Ns), 0);
    report(1, 0, 0, kPeriod60Ns, "com.example.other#0");
    EXPECT_EQ(brevoldMonitor(0, kPeriod60Ns), 1);
    gDevice.appType = 1;
    report(1, 0, 0, kPeriod60Ns, "com.example.third#0");
    report(1, 0, 0, kPeriod60Ns, "com.example.third#0");
    makeVerdictHold();
    EXPECT_EQ(brevoldMonitor(0, kPeriod60Ns), 0);
}

TEST_F(VsyncTest, NoVerdictBeforeATick) {
    restartWith("com.example.other#0");
    advance(-50 * kSecondNs);
    android::modeMonitor(100000000);
    advance(kSecondNs + 1);
    android::modeMonitor(100000000);  // mode 0, without a tick
    host::setTimeNs(5000000);
    EXPECT_EQ(brevoldMonitor(0, kPeriod60Ns), 0);
}

TEST_F(VsyncTest, ResetForgetsTheBusyQueueAndThePeriod) {
    brevoldMonitor(2, kPeriod60Ns);
    restartWith("com.example.other#0");
    makeVerdictHold();
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 1);
    android::clearConfigs();
    initialise();
    android::brevoldAppTypeCheck("com.example.third#0");
    android::brevoldLayerStatusCheck(false, "com.example.third#0", 0, 0);
    measure(kPeriod90Ns);
    takeCalls();
    EXPECT_EQ(boost(3), Texts{});
    // A report that decides nothing still tells the period.
    android::brevoldBufferMonitor(0, "x", "y", 0, 0, 0, 0, kPeriod90Ns);
    EXPECT_EQ(boost(3).size(), 1u);
}

TEST_F(VsyncTest, NoVerdictWithoutTheSwitch) {
    gDevice.properties["vendor.perf.jr10.enable"] = "0";
    restartWith("com.example.third#0");
    makeVerdictHold();
    EXPECT_EQ(brevoldMonitor(0, kPeriod60Ns), 0);
}

TEST_F(VsyncTest, BoostIsDueByModePeriodAndQueue) {
    struct Row {
        int fps;
        int64_t lowNs, highNs;
        int fewest;
    };
    const Row rows[] = {{60, 16000001, 16999999, 2},
                        {90, 10800001, 11699999, 2},
                        {120, 8000001, 8999999, 2},
                        {30, 16000001, 16999999, 3},
                        {24, 1, 0, 2},
                        {40, 1, 0, 2}};
    for (const Row& row : rows) {
        for (const int64_t periodNs :
             {16000000l, 16000001l, 16999999l, 17000000l, 10800000l, 10800001l, 11699999l,
              11700000l, 8000000l, 8000001l, 8999999l, 9000000l, -16666666l, 0l}) {
            report(1, 0, 0, periodNs);
            measure(kSecondNs / row.fps);
            takeCalls();
            const bool isInBand = periodNs >= row.lowNs && periodNs <= row.highNs;
            for (const int queued : {INT_MIN, 1, 2, 3}) {
                const Texts expected = isInBand && queued >= row.fewest
                                               ? Texts{"hint 4166 2000 0x122710"}
                                               : Texts{};
                EXPECT_EQ(boost(queued), expected) << row.fps << ' ' << periodNs << ' ' << queued;
            }
            for (const int suppress : {1, -1})
                EXPECT_EQ(boost(3, suppress), Texts{});
        }
    }
}

TEST_F(VsyncTest, BoostInModeOneWantsEitherSwitch) {
    const char* const kSmooth = "vendor.display.use_smooth_motion";
    const char* const kJank = "vendor.perf.jr10.enable";
    for (const bool smooth : {false, true}) {
        for (const bool jank : {false, true}) {
            gDevice.properties[kSmooth] = smooth ? "1" : "0";
            gDevice.properties[kJank] = jank ? "1" : "0";
            restartWith("com.example.app#" + std::to_string(smooth) + std::to_string(jank));
            measure(kSecondNs / 30);
            EXPECT_EQ(boost(3).size(), smooth || jank ? 1u : 0u) << smooth << jank;
            measure(kPeriod60Ns);
            EXPECT_EQ(boost(2).size(), 1u);  // the other modes want neither
        }
    }
}

TEST_F(VsyncTest, PostedBoostsAreCountedAsIdle) {
    measure(kPeriod60Ns);
    for (int i = 0; i < 3; ++i)
        brevoldScaling(2, 0);
    brevoldScaling(2, 1);
    brevoldScaling(1, 0);
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 2000 0x122710"});
    host::takeLog();
    brevoldRefresh();
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 0 0x3"});
    for (int i = 0; i < 62; ++i) {
        advance(kPeriod60Ns);
        brevoldRefresh();
    }
    const Texts log = takeLogTexts();
    ASSERT_EQ(log.size(), 1u);
    EXPECT_NE(log[0].find("\tIdle:\t3"), std::string::npos) << log[0];
}

TEST_F(VsyncTest, ABoostForAnotherAppOrWithTheFeatureOffIsNotPosted) {
    gDevice.features = {4};
    restartWith("com.example.other#0");
    measure(kPeriod60Ns);
    EXPECT_EQ(boost(3), Texts{});
    gDevice.features = {4, 5};
    gDevice.appType = 0;
    restartWith("com.example.third#0");
    measure(kPeriod60Ns);
    EXPECT_EQ(boost(3), Texts{});
}

}  // namespace
}  // namespace brevold::test
