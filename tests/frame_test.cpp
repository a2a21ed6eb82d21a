#include "tests/test_device.h"

namespace brevold::test {
namespace {

using FrameTest = TargetAppTest;
using RefreshRateTest = DeviceTest;

constexpr char kDown[] = "hint 4166 19 0x41011a";
constexpr char kDownFully[] = "hint 4166 19 0x4103e8";
constexpr char kDownToNothing[] = "hint 4166 19 0x410000";

// Calls the monitor itself, so that each argument is the test's own.
std::string monitor(int queued, int64_t diffSFToQBNs, int64_t diffQBNs,
                    int64_t periodNs = kPeriod60Ns, const char* peer = kLayer,
                    int64_t sfTimeNs = 1) {
    android::brevoldBufferMonitor(queued, peer, kLayer, diffSFToQBNs, diffQBNs, sfTimeNs, 0,
                                  periodNs);
    return takeCalls();
}

std::string boost(int queuedFrames, int suppress = 0) {
    EXPECT_EQ(brevoldScaling(queuedFrames, suppress), 0);
    const std::string calls = takeCalls();
    android::releaseScaling();
    takeCalls();
    return calls;
}

std::string counts(int down, int up, int idle) {
    return "[FM]gMode:2 \tFPS:\t60.00 \tDown:\t" + std::to_string(down) + " \tUp:\t" +
           std::to_string(up) + " \tIdle:\t" + std::to_string(idle);
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
    EXPECT_EQ(takeLabels().find(';'), 255u);  // a long one is cut
}

TEST_F(FrameTest, Decisions) {
    measure(kPeriod60Ns);
    struct Row {
        int queued;
        int64_t diffSFToQBNs, diffQBNs;
        const char* calls;
    };
    const Row rows[] = {
            {2, 3000000, 40000000, kDownFully},
            {2, 0, 31333332, kDownFully},
            {3, 0, 23499999, "hint 4166 19 0x4101f4"},
            {2, 40000000, 8000000, kDownToNothing},  // negative headroom
            {2, 31333332, 1, kDownFully},            // none
            {2, 31333332, 0, kDownToNothing},        // an undefined ratio is not capped
            {2, 0, -8000000, kDownToNothing},
            {INT_MAX, 0, 0, kDownToNothing},
            {0, 3000000, 40000000, ""},
            {-1, 3000000, 40000000, ""},
            {1, 1333332, 30000000, ""},  // exactly two budgets
            {1, 1333332, 30000004, "hint 4166 19 0x5203e8"},
            {1, 1333332, 300000000, "hint 4166 19 0x522710"},  // not capped
            {1, 31333332, 0, ""},                              // undefined
            {1, 31333332, 1, "hint 4166 19 0x52ffff"},
            {1, 41333332, 300000000, ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(monitor(row.queued, row.diffSFToQBNs, row.diffQBNs), row.calls) << &row - rows;
    for (const std::string peer : {"com", "com.example.game/com.example.game.Main#8",
                                   "com.example.game/com.example.game.Main#77"}) {
        EXPECT_EQ(monitor(2, 3000000, 8000000, kPeriod60Ns, peer.c_str()), "") << peer;
    }
    EXPECT_ABORT(monitor(1, INT64_MIN, 8000000));
    EXPECT_ABORT(monitor(2, INT64_MIN, 8000000));
    EXPECT_ABORT(monitor(1, 15666666 - INT64_MAX, 8000000));  // only the divisor overflows
}

TEST_F(FrameTest, ModePeriodAndQueueDecide) {
    struct Row {
        int fps;
        int64_t lowNs, highNs;
        int fewestForBoost;
        const char* down;
    };
    const Row rows[] = {{60, 16000001, 16999999, 2, kDownFully},
                        {90, 10800001, 11699999, 2, "hint 4166 13 0x4103e8"},
                        {120, 8000001, 8999999, 2, "hint 4166 10 0x4103e8"},
                        {30, 16000001, 16999999, 3, ""},
                        {24, 1, 0, 2, ""},
                        {40, 1, 0, 2, ""}};
    for (const Row& row : rows) {
        measure(kSecondNs / row.fps);
        for (const int64_t periodNs :
             {16000000l, 16000001l, 16999999l, 17000000l, 10800000l, 10800001l, 11699999l,
              11700000l, 8000000l, 8000001l, 8999999l, 9000000l, -16666666l, 0l, INT64_MIN}) {
            const bool isInBand = periodNs >= row.lowNs && periodNs <= row.highNs;
            EXPECT_EQ(monitor(2, 0, kSecondNs, periodNs), isInBand ? row.down : "")
                    << row.fps << ' ' << periodNs;
            for (const int queued : {INT_MIN, 1, 2, 3}) {
                EXPECT_EQ(boost(queued), isInBand && queued >= row.fewestForBoost ? kBoostHint : "")
                        << row.fps << ' ' << periodNs << ' ' << queued;
            }
            for (const int suppress : {1, -1})
                EXPECT_EQ(boost(3, suppress), "");
        }
    }
}

TEST_F(FrameTest, DecidesOnlyWithAStampAndAPeriodBehindIt) {
    measure(kPeriod60Ns);
    monitor(2, 0, 0, kPeriod60Ns, kLayer, 0);
    EXPECT_EQ(monitor(2, 3000000, 8000000), "");
    EXPECT_EQ(monitor(2, 3000000, 8000000), kDown);
    EXPECT_EQ(monitor(2, 0, 0, kPeriod60Ns, "x", 0), "");  // not decided on, but its stamp counts
    EXPECT_EQ(monitor(2, 3000000, 8000000), "");

    restart();
    android::brevoldAppTypeCheck("com.example.other#0");
    android::brevoldLayerStatusCheck(false, "com.example.other#0", 0, 0);
    measure(kPeriod60Ns);
    EXPECT_EQ(boost(3), "");
    EXPECT_EQ(monitor(0, 0, 0, kPeriod60Ns, "x", 0), "");  // nor this, but it tells the period
    EXPECT_EQ(boost(3), kBoostHint);
    EXPECT_EQ(monitor(2, 3000000, 8000000), "");
    EXPECT_EQ(monitor(2, 3000000, 8000000), kDown);
}

TEST_F(FrameTest, SwitchesOfDownAndBoost) {
    gDevice.properties["vendor.perf.pfar.down.enable"] = "0";
    restartWith("com.example.other#0");
    measure(kPeriod60Ns);
    takeLogTexts();
    takeLabels();
    EXPECT_EQ(monitor(2, 3000000, 8000000), "");
    EXPECT_EQ(takeLabels().rfind("[DOWN_SCALING]mode \t2 \tscale \t0.282353 ", 0), 0u);
    EXPECT_NE(monitor(1, 0, 40000000), "");
    tick(kPeriod60Ns, 62);
    EXPECT_EQ(takeLogTexts(), counts(0, 1, 0));
    for (const int switches : {0, 1, 2, 3}) {
        gDevice.properties["vendor.display.use_smooth_motion"] = switches % 2 == 1 ? "1" : "0";
        gDevice.properties["vendor.perf.jr10.enable"] = switches >= 2 ? "1" : "0";
        restartWith("com.example.app#" + std::to_string(switches));
        measure(kSecondNs / 30);
        EXPECT_EQ(boost(3), switches != 0 ? kBoostHint : "") << switches;
        measure(kPeriod60Ns);
        EXPECT_EQ(boost(2), kBoostHint);  // the other modes want neither
    }
    gDevice.features = {4};
    restartWith("com.example.third#0");
    measure(kPeriod60Ns);
    EXPECT_EQ(boost(3) + monitor(2, 3000000, 8000000), "");
    gDevice.features = {4, 5};
    gDevice.appType = 0;
    restartWith("com.example.fourth#0");
    measure(kPeriod60Ns);
    EXPECT_EQ(boost(3) + monitor(2, 3000000, 8000000), "");
}

TEST_F(FrameTest, DecisionsAreCountedPerWindow) {
    const auto decide = [] {
        for (int i = 0; i < 4; ++i)
            monitor(2, 0, 0);
        for (int i = 0; i < 2; ++i)
            monitor(1, 0, 40000000);
        for (int i = 0; i < 3; ++i)
            brevoldScaling(2, 0);
        brevoldScaling(2, 1);
        brevoldScaling(1, 0);
    };
    measure(kPeriod60Ns);
    takeLogTexts();
    decide();
    tick(kPeriod60Ns, 124);
    EXPECT_EQ(takeLogTexts(), counts(4, 2, 3) + "; " + counts(0, 0, 0));
    decide();
    restartWith("com.example.other#0");
    tick(kPeriod60Ns, 63);  // no gap before them, which would forget the counts as well
    EXPECT_EQ(takeLogTexts(), counts(0, 0, 0));
}

TEST_F(FrameTest, EachFieldReachesItsPlace) {
    measure(kPeriod60Ns);
    takeCalls();
    LayerFrameInfo info = frame(2);
    info.lastQbTime = -1;
    info.sfTime = 0;
    EXPECT_EQ(submit(info), "");  // the monitor is left alone
    EXPECT_EQ(submit(frame(2)), kDown);
    info = frame(2);
    info.peerLayerName = "x";
    EXPECT_EQ(submit(info), "");
    info.layerName = info.peerLayerName = "com.example.other/Main#1";
    for (const uint8_t skip : {uint8_t{1}, uint8_t{0x80}}) {
        info.skipLayerCheck = skip;
        EXPECT_EQ(submit(info), kDown);  // monitored, but not tracked
    }
    info.skipLayerCheck = 0;
    info.layerKeyA = 7;
    info.layerKeyB = 9;
    EXPECT_EQ(submit(info), "query 5633 com.example.other");  // a new layer, of no mode
    measure(kPeriod60Ns);
    android::brevoldLayerStatusCheck(false, info.layerName, 7, 9);  // unchanged: the mode stays
    EXPECT_EQ(submit(info), kDown);

    EXPECT_EQ(brevoldOnFrameAvailable(nullptr), 0);
    android::checkRefreshRateChange(nullptr);
    EXPECT_EQ(takeCalls(), "");
}

TEST_F(FrameTest, TheRecordIsReadBeforeTheServiceIsAsked) {
    static LayerFrameInfo gReported;
    gReported = frame(2, "com.example.other#0");
    gDevice.duringCall = [] {
        gReported = frame(2, "com.example.third#0");
        gReported.layerKeyA = gReported.layerKeyB = gReported.skipLayerCheck = 1;
    };
    brevoldOnFrameAvailable(&gReported);
    gDevice.duringCall = nullptr;
    measure(kPeriod60Ns);
    EXPECT_EQ(submit(frame(2, "com.example.other#0")), kDown);  // the same layer still
}

TEST_F(FrameTest, StampsWhoseDifferenceOverflowsAbort) {
    LayerFrameInfo info = frame();
    info.lastQbTime = -1;
    info.qbTime = INT64_MAX;  // to -1 overflows, though the monitor would not be called
    EXPECT_ABORT(brevoldOnFrameAvailable(&info));
    info.qbTime = INT64_MIN + 1;
    info.lastQbTime = 0;
    info.sfTime = 2;
    EXPECT_ABORT(brevoldOnFrameAvailable(&info));
}

TEST_F(RefreshRateTest, FollowsTheBandsAndIsAskedAgainWhereItFailed) {
    provide(kClient);
    provide(kFeatures);
    gDevice.isOn = false;
    gDevice.features = {};
    gDevice.properties["vendor.perf.fps_switch.enable"] = "1";
    ASSERT_TRUE(brevoldInit());
    struct Row {
        int64_t periodNs;
        const char* calls;
    };
    const Row rows[] = {
            {16000000, ""},  {17000000, ""},
            {-16000001, ""}, {16000001, "hint 4244 0 0x3c"},
            {16999999, ""},  {10800000, ""},
            {11700000, ""},  {10800001, "release 1; hint 4244 0 0x5a"},
            {11699999, ""},  {8000000, ""},
            {9000000, ""},   {8999999, "release 2; hint 4244 0 0x78"},
            {8000001, ""},   {0, ""},
            {INT64_MIN, ""}, {16666666, "release 3; hint 4244 0 0x3c"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(submit(frame(0, kLayer, row.periodNs)), row.calls) << row.periodNs;
    gDevice.nextHandle = 0;
    EXPECT_EQ(submit(frame(0, kLayer, kPeriod90Ns)), "release 4; hint 4244 0 0x5a");
    for (const int handle : {0, -3, 7}) {
        gDevice.nextHandle = handle;
        EXPECT_EQ(submit(frame(0, kLayer, kPeriod90Ns)), "hint 4244 0 0x5a");
    }
    EXPECT_EQ(submit(frame(0, kLayer, kPeriod90Ns)), "");
    android::clearConfigs();  // the hint stays held
    LayerFrameInfo info = frame(0, kLayer, kPeriod90Ns);
    android::checkRefreshRateChange(&info);
    EXPECT_EQ(takeCalls(), "");
    info.refreshPeriod = kPeriod60Ns;
    android::checkRefreshRateChange(&info);
    EXPECT_EQ(takeCalls(), "release 7; hint 4244 0 0x3c");
}

}  // namespace
}  // namespace brevold::test
