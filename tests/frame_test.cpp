#include "tests/test_device.h"

using namespace brevold::test;

using FrameTest = TargetAppTest;

constexpr char kDown[] = "hint 4166 19 0x41011a";

// Calls the monitor directly, with arbitrary arguments.
static std::string monitor(int queued, int64_t diffSFToQBNs, int64_t diffQBNs,
                           int64_t periodNs = kPeriod60Ns, const char* peer = kLayer) {
    android::brevoldBufferMonitor(queued, peer, kLayer, diffSFToQBNs, diffQBNs, 1, 0, periodNs);
    return takeCalls();
}

static std::string counts(const char* downUp, const std::string& gap, const char* idle) {
    return std::string("[FM]gMode:2 \tFPS:\t60.00 \t") + downUp + gap + "\tIdle:\t" + idle;
}

TEST_F(FrameTest, DecisionsAreMarked) {
    const std::string gap(53, ' ');
    measure(kPeriod60Ns);
    takeLabels();
    EXPECT_EQ(monitor(2, 3000000, 8000000), kDown);
    EXPECT_EQ(takeLabels(), "[DOWN_SCALING]mode \t2 \tscale \t0.282353" + gap +
                                    "\theadRoom \t28333332 \tdiffQB \t8000000 \tdiffSFToQB" + gap +
                                    "\t3000000 \tlastMaxQueuedFrames \t2; "
                                    "energyScaling[Scale:0.28]");
    measure(kPeriod120Ns);
    takeLabels();
    EXPECT_EQ(monitor(1, 2000000, 14000000, kPeriod120Ns), "hint 4166 10 0x520451");
    EXPECT_EQ(takeLabels(), "[UP_SCALING]mode \t4 \tscale \t1.105263" + gap +
                                    "\theadRoom \t5333333 \tdiffQB \t14000000 \tdiffSFToQB" + gap +
                                    "\t2000000 \tlastMaxQueuedFrames \t1; "
                                    "energyScaling[Scale:1.11]");
    monitor(2, INT64_MIN + kSecondNs, INT64_MIN, kPeriod120Ns);
    EXPECT_EQ(takeLabels().find(';'), 255u);  // a long label is cut
}

TEST_F(FrameTest, Decisions) {
    measure(kPeriod60Ns);
    // DOWN: capped at 1, even without headroom; 0 if the ratio is NaN or negative.
    const std::tuple<int, int64_t, int64_t, std::string> rows[] = {
            {2, 3000000, 40000000, "0x4103e8"}, {2, 0, 31333332, "0x4103e8"},
            {3, 0, 23499999, "0x4101f4"},       {2, 40000000, 8000000, "0x410000"},
            {2, 31333332, 1, "0x4103e8"},       {2, 31333332, 0, "0x410000"},
            {2, 0, -8000000, "0x410000"},       {INT_MAX, 0, 0, "0x410000"},
            {1, 1333332, 30000004, "0x5203e8"}, {1, 1333332, 300000000, "0x522710"},
            {1, 31333332, 1, "0x52ffff"},
    };
    for (const auto& [queued, diffSFToQBNs, diffQBNs, word] : rows)
        EXPECT_EQ(monitor(queued, diffSFToQBNs, diffQBNs), "hint 4166 19 " + word) << diffQBNs;
    EXPECT_EQ(monitor(0, 3000000, 40000000) + monitor(-1, 3000000, 40000000), "");
    // UP: an interval of exactly two budgets, a ratio that is NaN, a negative ratio.
    EXPECT_EQ(monitor(1, 1333332, 30000000), "");
    EXPECT_EQ(monitor(1, 31333332, 0) + monitor(1, 41333332, 300000000), "");
    for (const char* peer : {"com", "com.example.game/com.example.game.Main#8",
                             "com.example.game/com.example.game.Main#77"})
        EXPECT_EQ(monitor(2, 3000000, 8000000, kPeriod60Ns, peer), "") << peer;
    EXPECT_ABORT(monitor(1, INT64_MIN, 8000000));
    EXPECT_ABORT(monitor(2, INT64_MIN, 8000000));
    EXPECT_ABORT(monitor(1, 15666666 - INT64_MAX, 8000000));  // only the divisor overflows
}

TEST_F(FrameTest, DecisionsAreCountedPerWindow) {
    const std::string none = counts("Down:\t0 \tUp:\t0", " ", "0");
    const auto decide = [] {
        for (const int queued : {2, 2, 2, 2, 1, 1})
            monitor(queued, 0, 40000000);
        for (const int queued : {2, 2, 2, 1})
            brevoldScaling(queued, 0);
        brevoldScaling(2, 1);
        android::releaseScaling();
        takeCalls();
        takeLabels();
        takeLogTexts();
    };
    measure(kPeriod60Ns);
    decide();
    tick(kPeriod60Ns, 124);
    EXPECT_EQ(takeLogTexts(), counts("Down:\t4 \tUp:\t2", " ", "3") + "; " + none);
    EXPECT_EQ(takeLabels().rfind(counts("Down:\t4 \tUp:\t2", std::string(45, ' '), "3")), 0u);
    decide();
    gDevice.properties["vendor.perf.pfar.down.enable"] = "0";
    restartWith("com.example.other#0");
    tick(kPeriod60Ns, 63);  // no idle gap, which would reset the counts as well
    EXPECT_EQ(takeLogTexts(), none);
    takeLabels();
    EXPECT_EQ(monitor(2, 3000000, 8000000), "");  // without its switch, DOWN is only marked
    EXPECT_EQ(takeLabels().rfind("[DOWN_SCALING]mode \t2 \tscale \t0.282353 ", 0), 0u);
    decide();
    tick(kPeriod60Ns, 62);
    EXPECT_EQ(takeLogTexts(), counts("Down:\t0 \tUp:\t2", " ", "3"));
}

TEST_F(FrameTest, MissingRecordsAndExtremeStamps) {
    EXPECT_EQ(brevoldOnFrameAvailable(nullptr), 0);
    android::checkRefreshRateChange(nullptr);
    measure(kPeriod60Ns);
    LayerFrameInfo info = frame(2);
    info.sfTime = 0;
    EXPECT_EQ(submit(info), kDown);
    EXPECT_EQ(submit(frame(2)), "");  // the previous stamp is 0
    info.lastQbTime = -1;
    info.qbTime = INT64_MAX;  // minus -1 overflows, even though the monitor is not called
    EXPECT_ABORT(brevoldOnFrameAvailable(&info));
    info.qbTime = INT64_MIN + 1;
    info.lastQbTime = 0;
    info.sfTime = 2;
    EXPECT_ABORT(brevoldOnFrameAvailable(&info));
}

static LayerFrameInfo gRecord;

TEST_F(FrameTest, TheRecordIsCopiedBeforeTheServiceCall) {
    gRecord = frame(2, "com.example.other#0");
    gRecord.layerKeyA = 7;
    gRecord.layerKeyB = 9;
    gDevice.duringCall = [] {
        gRecord = frame(2, "com.example.third#0", kPeriod90Ns);
        gRecord.layerKeyA = gRecord.layerKeyB = 1;
    };
    EXPECT_EQ(brevoldOnFrameAvailable(&gRecord), 0);
    gDevice.duringCall = nullptr;
    measure(kPeriod60Ns);
    android::brevoldLayerStatusCheck(false, "com.example.other#0", 7, 9);
    brevoldScaling(2, 0);
    EXPECT_EQ(takeCalls(), kBoostHint);  // same layer, and the period of the mode
}

TEST_F(DeviceTest, RefreshRateHintFollowsTheBandsAndIsSentAgainIfItFailed) {
    provide(kClient);
    ASSERT_TRUE(brevoldInit());
    const std::pair<int64_t, std::string> rows[] = {
            {16000000, ""}, {17000000, ""}, {-16000001, ""}, {16000001, "hint 4244 0 0x3c"},
            {16999999, ""}, {10800000, ""}, {11700000, ""},  {10800001, "hint 4244 0 0x5a"},
            {11699999, ""}, {8000000, ""},  {9000000, ""},   {8999999, "hint 4244 0 0x78"},
            {8000001, ""},  {0, ""},        {INT64_MIN, ""}, {16666666, "hint 4244 0 0x3c"},
    };
    std::string release;  // precedes every hint but the first
    for (const auto& [periodNs, hint] : rows) {
        EXPECT_EQ(submit(frame(0, kLayer, periodNs)), hint.empty() ? "" : release + hint);
        if (!hint.empty()) release = "release " + std::to_string(gDevice.nextHandle - 1) + "; ";
    }
    gDevice.nextHandle = 0;
    LayerFrameInfo info = frame(0, kLayer, kPeriod90Ns);
    EXPECT_EQ(submit(info), "release 4; hint 4244 0 0x5a");
    for (const int handle : {0, -3, 7}) {
        gDevice.nextHandle = handle;
        EXPECT_EQ(submit(info), "hint 4244 0 0x5a");
    }
    EXPECT_EQ(submit(info), "");
    android::clearConfigs();  // the hint stays in force
    android::checkRefreshRateChange(&info);
    info.refreshPeriod = kPeriod60Ns;
    EXPECT_EQ(submit(info), "");
    android::checkRefreshRateChange(&info);
    EXPECT_EQ(takeCalls(), "release 7; hint 4244 0 0x3c");
}
