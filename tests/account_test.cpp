#include "tests/account.h"

#include <random>

#include "tests/test_device.h"

using namespace brevold::test;

// Random frames, with a new initialisation and other switches from time to time.
TEST_F(DeviceTest, EveryCallOfTheServiceIsTheOneDue) {
    provide(kClient);
    provide(kFeatures);
    std::mt19937 random;
    const auto pick = [&random](size_t below) { return random() % below; };
    Account account;
    Frame frame;
    int64_t tickNs = 100 * kSecondNs;
    for (int number = 0; number < 20000; ++number) {
        SCOPED_TRACE(number);
        if (number % 500 == 0) {
            const auto isOn = [&](const char* setting) {
                const bool on = pick(4) != 0;
                gDevice.properties[setting] = on ? "1" : "0";
                return on;
            };
            gDevice.properties = {{"vendor.perf.brevold.debug", "0"},
                                  {"vendor.perf.brevold.debug.layers", kDebugLayer.name}};
            Switches switches = {
                    isOn("vendor.perf.pfar.enable"), isOn("vendor.perf.pfar.down.enable"),
                    isOn("vendor.perf.jr10.enable"), isOn("vendor.display.use_smooth_motion"),
                    isOn("vendor.perf.fps_switch.enable")};
            gDevice.features = {};
            for (const int feature : {4, 5}) {
                if (pick(4) != 0) gDevice.features.insert(feature);
            }
            switches.scaling &= gDevice.features.count(5) != 0;
            switches.jankBoost &= gDevice.features.count(4) != 0;
            account.restart(switches);
            ASSERT_EQ(restart(), switches.scaling || switches.jankBoost || switches.refreshRate);
        }
        advance(frame, tickNs, pick);
        gDevice.appType = frame.layer->appType;
        host::setTimeNs(frame.nowNs);
        account.tick(frame);
        brevoldRefresh();
        ASSERT_EQ(brevoldCheck("sf"), account.isActing());
        ASSERT_EQ(takeCalls(), account.takeDue());

        account.report(frame);
        ASSERT_EQ(submit(infoOf(frame)), account.takeDue());

        host::setTimeNs(frame.nowNs += static_cast<int64_t>(pick(3)) * 9000000);
        ASSERT_EQ(brevoldMonitor(frame.queued, frame.rate->periodNs), account.vsync(frame));
        account.compose(frame);
        ASSERT_EQ(brevoldScaling(frame.queued, frame.isSuppressed), 0);
        ASSERT_EQ(takeCalls(), account.takeDue());
    }
    EXPECT_TRUE(host::takeTraceMarks().empty());  // debug output is off
    EXPECT_EQ(takeLogTexts(), "");
}
