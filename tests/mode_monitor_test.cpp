#include <climits>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

constexpr char kGap[] = "                                             ";

class ModeMonitorTest : public DeviceTest {
  protected:
    void SetUp() override { startTargetApp(); }

    static void tick(int64_t intervalNs) {
        advance(intervalNs);
        brevoldRefresh();
    }

    /** The window's line by the fps in it, from the log of one window that closed. */
    static std::string window() {
        const Texts log = takeLogTexts();
        return log.size() == 1 ? log[0] : std::to_string(log.size()) + " lines";
    }

    /** Opens a window and closes it with intervals whose mean is the one given, exactly. */
    static std::string windowOf(int64_t meanNs) {
        host::takeLog();
        advance(kSecondNs);
        for (int i = 0; i < 3; ++i)
            android::modeMonitor(meanNs);
        advance(kSecondNs + 1);
        android::modeMonitor(meanNs);
        return window();
    }
};

TEST_F(ModeMonitorTest, SteadyRates) {
    const std::pair<int, int> cases[] = {{60, 2}, {90, 3}, {120, 4}, {30, 1},  {24, 0},
                                         {40, 5}, {70, 5}, {100, 5}, {144, 5}, {10, 0}};
    for (const auto& [fps, mode] : cases) {
        host::takeLog();
        measure(kSecondNs / fps);
        EXPECT_EQ(window().rfind("[FM]gMode:" + std::to_string(mode) + " \tFPS:\t" +
                                         std::to_string(fps) + ".",
                                 0),
                  0u)
                << fps;
    }
}

struct BoundCase {
    int64_t meanNs;
    int mode;
};

TEST_F(ModeMonitorTest, BoundsOfTheModes) {
    // Around each bound the nearest rates in single precision: above it, on it, below it. None is
    // 122 exactly.
    const BoundCase cases[] = {
            {37037034, 1}, {37037036, 0}, {37037038, 0}, {31249998, 5}, {31250000, 5},
            {31250002, 1}, {21276594, 2}, {21276596, 5}, {21276598, 5}, {16129030, 5},
            {16129031, 5}, {16129033, 2}, {12987012, 3}, {12987013, 5}, {12987014, 5},
            {10869564, 5}, {10869565, 5}, {10869566, 3}, {9345793, 4},  {9345794, 5},
            {9345795, 5},  {8196721, 5},  {8196722, 4},
    };
    for (const BoundCase& c : cases) {
        EXPECT_EQ(windowOf(c.meanNs).rfind("[FM]gMode:" + std::to_string(c.mode), 0), 0u)
                << c.meanNs;
    }
}

TEST_F(ModeMonitorTest, WindowClosesPastOneSecond) {
    host::takeLog();
    advance(kSecondNs);
    brevoldRefresh();
    tick(1);  // opens
    tick(100000000);
    for (int i = 0; i < 9; ++i)
        tick(100000000);
    EXPECT_EQ(window(), "0 lines");  // its age is one second to the nanosecond
    tick(1);
    EXPECT_EQ(window(), "[FM]gMode:0 \tFPS:\t12.00 \tDown:\t0 \tUp:\t0 \tIdle:\t0");
    EXPECT_EQ(takeLabels(), Texts{std::string("[FM]gMode:0 \tFPS:\t12.00 \tDown:\t0 \tUp:\t0") +
                                  kGap + "\tIdle:\t0"});
}

TEST_F(ModeMonitorTest, OddIntervalsCountOnlyWhileAWindowIsOpen) {
    host::takeLog();
    advance(kSecondNs);
    android::modeMonitor(0);
    android::modeMonitor(-5);
    advance(kSecondNs + 1);
    android::modeMonitor(149999999);
    EXPECT_EQ(window(), "0 lines");
    android::modeMonitor(0);
    android::modeMonitor(INT64_MIN);
    android::modeMonitor(-50000001);
    advance(kSecondNs + 1);
    android::modeMonitor(1);  // five ticks, a sum far below zero
    EXPECT_EQ(window().rfind("[FM]gMode:5 \tFPS:\t-0.00", 0), 0u);
    android::modeMonitor(1);
    for (int i = 0; i < 9; ++i)
        android::modeMonitor(0);
    advance(kSecondNs + 1);
    android::modeMonitor(-1);
    EXPECT_EQ(window().rfind("[FM]gMode:5 \tFPS:\tINF", 0), 0u);
}

TEST_F(ModeMonitorTest, AnIdleGapDiscardsTheWindowAndTheMode) {
    const auto isMeasured = [] {
        android::energyScaling(1.0f, 1, 0, 1);
        return takeCalls().size() == 1;
    };
    measure(kPeriod60Ns);
    tick(149999999);
    EXPECT_TRUE(isMeasured());
    tick(150000000);
    EXPECT_FALSE(isMeasured());
    host::takeLog();
    for (int i = 0; i < 60; ++i)
        tick(kPeriod60Ns);
    EXPECT_EQ(window(), "0 lines");  // the window opened after the gap is not yet over
    for (int i = 0; i < 2; ++i)
        tick(kPeriod60Ns);
    EXPECT_EQ(window().rfind("[FM]gMode:2 ", 0), 0u);
}

TEST_F(ModeMonitorTest, TickWithdrawsThePendingBoost) {
    android::energyScaling(10.0f, 2, 2, 0);
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 2000 0x122710"});
    tick(kPeriod60Ns);
    EXPECT_EQ(takeCalls(), Texts{"hint 4166 0 0x1"});
    tick(kPeriod60Ns);
    EXPECT_EQ(takeCalls(), Texts{});
}

TEST_F(ModeMonitorTest, ATickDifferenceThatOverflowsAborts) {
    host::setTimeNs(INT64_MIN);
    brevoldRefresh();
    host::setTimeNs(1);
    EXPECT_EXIT(brevoldRefresh(), testing::KilledBySignal(SIGABRT), "");
}

TEST_F(ModeMonitorTest, AWindowAgeThatOverflowsAborts) {
    host::setTimeNs(INT64_MIN);
    android::modeMonitor(1);
    host::setTimeNs(0);
    EXPECT_EXIT(android::modeMonitor(1), testing::KilledBySignal(SIGABRT), "");
}

TEST_F(ModeMonitorTest, TheFirstTickAfterAClearOnlyRecordsTheTime) {
    host::setTimeNs(5000000);
    for (const char* layer : {"a#0", "b#0"}) {  // as loaded, and after a reset
        restartWith(layer);
        host::takeLog();
        for (int i = 0; i <= 11; ++i) {
            EXPECT_EQ(takeLogTexts(), Texts{}) << i;
            host::setTimeNs(5000000 + i * 100000001);
            brevoldRefresh();
        }
        EXPECT_EQ(takeLogTexts().size(), 1u);  // of the window that the second tick opened
        host::setTimeNs(5000000);
    }
}

using SwitchedTest = DeviceTest;

TEST_F(SwitchedTest, OnlyJankBoostStillMeasuresAndNothingElseDoes) {
    provideClient();
    provideFeatures();
    switchEverythingOn();
    gDevice.features = {4};
    initialise();
    measure(kPeriod60Ns);
    EXPECT_EQ(takeLogTexts().size(), 1u);
    android::clearConfigs();
    measure(kPeriod60Ns);
    EXPECT_EQ(takeLogTexts().size(), 0u);
}

}  // namespace
}  // namespace brevold::test
