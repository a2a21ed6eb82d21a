#include "tests/test_device.h"

using namespace brevold::test;

using ModeTest = TargetAppTest;

// Adds the ticks of a window and, more than a second later, the tick that closes it.
static std::string windowOf(std::initializer_list<int64_t> intervalsNs, int64_t lastNs) {
    for (const int64_t intervalNs : intervalsNs)
        android::modeMonitor(intervalNs);
    advance(kSecondNs + 1);
    android::modeMonitor(lastNs);
    return takeLogTexts();
}

TEST_F(ModeTest, BoundsOfTheModes) {
    // Per bound, the nearest rates in single precision: above, equal, below. No rate equals 122.
    const std::pair<int64_t, char> cases[] = {
            {100000000, '0'}, {37037038, '0'}, {37037036, '0'}, {37037034, '1'}, {31250002, '1'},
            {31250000, '5'},  {31249998, '5'}, {21276598, '5'}, {21276596, '5'}, {21276594, '2'},
            {16129033, '2'},  {16129031, '5'}, {16129030, '5'}, {12987014, '5'}, {12987013, '5'},
            {12987012, '3'},  {10869566, '3'}, {10869565, '5'}, {10869564, '5'}, {9345795, '5'},
            {9345794, '5'},   {9345793, '4'},  {8196722, '4'},  {8196721, '5'},  {1, '5'}};
    for (const auto& [meanNs, mode] : cases)
        EXPECT_EQ(windowOf({meanNs, meanNs, meanNs}, meanNs).substr(10, 2), mode + std::string(" "))
                << meanNs;
    android::clearConfigs();
    EXPECT_EQ(windowOf({1}, 1), "");
    android::modeMonitor(100000000);  // forgotten by the initialisation
    brevoldInit();
    EXPECT_EQ(windowOf({1}, 1).substr(0, 31), "[FM]gMode:5 \tFPS:\t1000000000.00");
}

TEST_F(ModeTest, OddIntervalsCountOnlyWhileAWindowIsOpen) {
    EXPECT_EQ(windowOf({0, -5}, 149999999), "");
    // Five ticks with a negative sum.
    EXPECT_EQ(windowOf({0, INT64_MIN, -50000001}, 1).substr(0, 23), "[FM]gMode:5 \tFPS:\t-0.00");
    EXPECT_EQ(windowOf({1, 0, 0, 0, 0, 0, 0, 0, 0, 0}, -1).substr(0, 21),
              "[FM]gMode:5 \tFPS:\tINF");
    EXPECT_NE(takeLabels().find(" \tFPS:\tINF \t"), std::string::npos);
}

TEST_F(ModeTest, AWindowBeginsAtTheSecondTickAndLastsOverASecond) {
    const auto monitorAt = [](int64_t nowNs) {
        host::setTimeNs(nowNs);
        android::modeMonitor(1);
        return takeLogTexts();
    };
    restart();
    host::setTimeNs(100000000);
    brevoldRefresh();
    EXPECT_EQ(monitorAt(2 * kSecondNs), "");
    EXPECT_EQ(monitorAt(3 * kSecondNs), "");
    EXPECT_NE(monitorAt(3 * kSecondNs + 1), "");

    for (const char* property : {"vendor.perf.pfar.enable", "vendor.perf.jr10.enable"})
        gDevice.properties[property] = "0";
    restart();
    tick(kPeriod60Ns, 124);
    EXPECT_EQ(takeLogTexts(), "");
}

TEST_F(ModeTest, AnIdleGapLasts150Ms) {
    measure(kPeriod60Ns);
    tick(149999999);
    EXPECT_TRUE(hasMode());
    tick(150000000);
    EXPECT_FALSE(hasMode());
}

TEST_F(ModeTest, OverflowingDifferencesAbort) {
    host::setTimeNs(INT64_MIN);
    brevoldRefresh();
    host::setTimeNs(1);
    EXPECT_ABORT(brevoldRefresh());
    host::setTimeNs(INT64_MIN);
    android::modeMonitor(1);  // opens a window
    host::setTimeNs(0);
    EXPECT_ABORT(android::modeMonitor(1));
}
