#include <climits>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

class FrameArrivalTest : public DeviceTest {
  protected:
    /** Only the refresh-rate hint is on. */
    static void startRefreshRateOnly() {
        provideClient();
        provideFeatures();
        gDevice.properties["vendor.perf.fps_switch.enable"] = "1";
        ASSERT_TRUE(initialise());
    }

    static LayerFrameInfo frame() {
        LayerFrameInfo info = {};
        info.layerName = info.peerLayerName = kLayer;
        info.layerKeyA = 7;
        info.layerKeyB = 9;
        info.lastMaxQueuedFrames = 2;
        info.sfTime = 1;
        info.qbTime = 3000001;
        info.lastQbTime = info.qbTime - 8000000;
        info.refreshPeriod = kPeriod60Ns;
        return info;
    }

    static Texts submit(LayerFrameInfo info) {
        EXPECT_EQ(brevoldOnFrameAvailable(&info), 0);
        return takeCalls();
    }
};

TEST_F(FrameArrivalTest, RefreshRateFollowsTheBands) {
    startRefreshRateOnly();
    struct Step {
        int64_t periodNs;
        Texts calls;
    };
    const Step steps[] = {
            {16000000, {}},  {17000000, {}},
            {-16000001, {}}, {16000001, {"hint 4244 0 0x3c"}},
            {16999999, {}},  {10800000, {}},
            {11700000, {}},  {10800001, {"release 1", "hint 4244 0 0x5a"}},
            {11699999, {}},  {8000000, {}},
            {9000000, {}},   {8999999, {"release 2", "hint 4244 0 0x78"}},
            {8000001, {}},   {0, {}},
            {INT64_MIN, {}}, {16666666, {"release 3", "hint 4244 0 0x3c"}},
    };
    for (const Step& step : steps) {
        LayerFrameInfo info = frame();
        info.refreshPeriod = step.periodNs;
        EXPECT_EQ(submit(info), step.calls) << step.periodNs;
    }
}

TEST_F(FrameArrivalTest, AFailedRefreshRateHintIsAskedAgainAndNeverReleased) {
    startRefreshRateOnly();
    for (const int handle : {0, -3}) {
        gDevice.nextHandle = handle;
        EXPECT_EQ(submit(frame()), Texts{"hint 4244 0 0x3c"});
        EXPECT_EQ(submit(frame()), Texts{"hint 4244 0 0x3c"});
    }
    gDevice.nextHandle = 7;
    EXPECT_EQ(submit(frame()), Texts{"hint 4244 0 0x3c"});
    EXPECT_EQ(submit(frame()), Texts{});
    android::clearConfigs();  // the hint stays held
    LayerFrameInfo info = frame();
    android::checkRefreshRateChange(&info);
    EXPECT_EQ(takeCalls(), Texts{});
    info.refreshPeriod = kPeriod90Ns;
    android::checkRefreshRateChange(&info);
    EXPECT_EQ(takeCalls(), (Texts{"release 7", "hint 4244 0 0x5a"}));
}

TEST_F(FrameArrivalTest, NullReportsNothing) {
    startTargetApp();
    EXPECT_EQ(brevoldOnFrameAvailable(nullptr), 0);
    android::checkRefreshRateChange(nullptr);
    EXPECT_EQ(takeCalls(), Texts{});
}

TEST_F(FrameArrivalTest, NothingHappensBeforeInitialisation) {
    provideClient();
    EXPECT_EQ(submit(frame()), Texts{});
    brevoldRefresh();
    EXPECT_EQ(brevoldScaling(9, 0), 0);
    EXPECT_EQ(brevoldMonitor(0, kPeriod60Ns), 0);
}

TEST_F(FrameArrivalTest, KeysReachTheirPlaces) {
    startTargetApp();
    EXPECT_EQ(submit(frame()), Texts{});  // other identity values: a new layer, no mode
    measure(kPeriod60Ns);
    android::brevoldLayerStatusCheck(false, kLayer, 7, 9);  // unchanged, so the mode stays
    takeCalls();
    EXPECT_EQ(submit(frame()), Texts{"hint 4166 19 0x41011a"});
}

TEST_F(FrameArrivalTest, WithoutAPreviousFrameTheMonitorIsLeftAlone) {
    startTargetApp();
    measure(kPeriod60Ns);
    LayerFrameInfo info = frame();
    info.layerKeyA = info.layerKeyB = 0;
    info.lastQbTime = -1;
    info.sfTime = 0;
    EXPECT_EQ(submit(info), Texts{});
    info = frame();
    info.layerKeyA = info.layerKeyB = 0;
    EXPECT_EQ(submit(info), Texts{"hint 4166 19 0x41011a"});  // the stamp before it still stands
}

TEST_F(FrameArrivalTest, ASkippedLayerIsMonitoredButNotTracked) {
    startTargetApp();
    measure(kPeriod60Ns);
    takeCalls();
    LayerFrameInfo info = frame();
    info.layerName = info.peerLayerName = "com.example.other/Main#1";
    for (const uint8_t skip : {uint8_t{1}, uint8_t{0x80}}) {
        info.skipLayerCheck = skip;
        EXPECT_EQ(submit(info), Texts{"hint 4166 19 0x41011a"});
    }
    info.skipLayerCheck = 0;
    EXPECT_EQ(submit(info), Texts{"query 5633 com.example.other"});
}

TEST_F(FrameArrivalTest, StampsWhoseDifferenceOverflowsAbort) {
    startTargetApp();
    LayerFrameInfo info = frame();
    info.lastQbTime = -1;
    info.qbTime = INT64_MAX;  // to -1 overflows, though the monitor would not be called
    EXPECT_EXIT(brevoldOnFrameAvailable(&info), testing::KilledBySignal(SIGABRT), "");
    info = frame();
    info.qbTime = INT64_MIN + 1;
    info.lastQbTime = 0;
    info.sfTime = 2;
    EXPECT_EXIT(brevoldOnFrameAvailable(&info), testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
}  // namespace brevold::test
