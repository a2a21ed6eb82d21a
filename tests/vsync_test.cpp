#include "tests/test_device.h"

namespace brevold::test {
namespace {

struct VsyncTest : TargetAppTest {
    void SetUp() override {
        TargetAppTest::SetUp();
        submit(frame());  // the layer is unchanged now
    }
};

// At that frame rate, one millisecond past a tick.
int verdictAt(int fps, int queuedFrames = 0) {
    measure(kSecondNs / fps);
    advance(1000000);
    return brevoldMonitor(queuedFrames, kPeriod60Ns);
}

TEST_F(VsyncTest, VerdictBounds) {
    measure(kSecondNs / 30);
    const std::pair<int64_t, int> steps[] = {{0, 0}, {1, 1},         {17999998, 1},
                                             {1, 0}, {-20000000, 0}, {3000000, 1}};
    for (const auto& [byNs, verdict] : steps) {
        advance(byNs);
        EXPECT_EQ(brevoldMonitor(1, kPeriod60Ns), verdict) << byNs;
    }
    const std::pair<int64_t, int> periods[] = {{16000000, 0},  {16000001, 1},    {16999999, 1},
                                               {17000000, 0},  {kPeriod90Ns, 0}, {0, 0},
                                               {-16666666, 0}, {INT64_MIN, 0}};
    for (const auto& [periodNs, verdict] : periods)
        EXPECT_EQ(brevoldMonitor(1, periodNs), verdict) << periodNs;
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 1);
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 0);  // busy twice
    EXPECT_EQ(brevoldMonitor(1, kPeriod60Ns), 1);
    EXPECT_EQ(brevoldMonitor(INT_MAX, 0), 0);  // counts as busy even so
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 0);
    EXPECT_EQ(brevoldMonitor(INT_MIN, kPeriod60Ns), 1);
}

TEST_F(VsyncTest, VerdictWantsALowModeOfTheTargetAppOnAnUnchangedLayer) {
    const std::pair<int, int> cases[] = {{24, 1}, {30, 1}, {60, 0}, {90, 0}, {120, 0}, {40, 0}};
    for (const auto& [fps, verdict] : cases)
        EXPECT_EQ(verdictAt(fps), verdict) << fps;
    submit(frame(0, "com.example.other#0"));
    EXPECT_EQ(verdictAt(30), 0);
    submit(frame(0, "com.example.other#0"));
    EXPECT_EQ(verdictAt(30, 2), 1);
    restartWith("com.example.third#0");  // forgets that the queue was busy
    EXPECT_EQ(verdictAt(30, 2), 1);
    gDevice.appType = 1;
    restartWith("com.example.fourth#0");
    EXPECT_EQ(verdictAt(30), 0);
    gDevice.appType = 2;
    gDevice.properties["vendor.perf.jr10.enable"] = "0";
    restartWith("com.example.fifth#0");
    EXPECT_EQ(verdictAt(30), 0);
}

TEST_F(VsyncTest, NoVerdictBeforeATick) {
    restartWith("com.example.other#0");
    android::modeMonitor(100000000);
    advance(kSecondNs + 1);
    android::modeMonitor(100000000);  // mode 0, without a tick
    host::setTimeNs(5000000);
    EXPECT_EQ(brevoldMonitor(0, kPeriod60Ns), 0);
}

}  // namespace
}  // namespace brevold::test
