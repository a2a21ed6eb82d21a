#include "tests/account.h"

#include <random>

#include "tests/test_device.h"

using namespace brevold::test;

// Random frames, with another initialisation from time to time.
TEST_F(DeviceTest, EveryCallOfTheServiceIsTheOneDue) {
    provide(kClient);
    provide(kFeatures);
    std::mt19937 random;
    const auto pick = [&random](size_t below) { return random() % below; };
    Account account({});
    Frame frame = {};
    int64_t tickNs = 100 * kSecondNs;
    for (int number = 0; number < 16000; ++number) {
        SCOPED_TRACE(number);
        if (number % 2000 == 0) {
            const auto isOn = [bit = number / 2000](int switches) {
                return (switches >> bit & 1) != 0;
            };
            const Switches switches = {isOn(0x6b), isOn(0x3d), isOn(0x97), isOn(0x65), isOn(0xcd)};
            gDevice.properties = {
                    {"vendor.perf.pfar.enable", switches.scaling ? "1" : "0"},
                    {"vendor.perf.pfar.down.enable", switches.scalingDown ? "1" : "0"},
                    {"vendor.perf.jr10.enable", switches.jankBoost ? "1" : "0"},
                    {"vendor.display.use_smooth_motion", switches.smoothMotion ? "1" : "0"},
                    {"vendor.perf.fps_switch.enable", switches.refreshRate ? "1" : "0"},
                    {"vendor.perf.brevold.debug", "0"},
                    {"vendor.perf.brevold.debug.layers", kDebugLayer.name}};
            restart();
            account.restart(switches);
            frame.rate = kRates;
            frame.layer = kLayers;
        }
        advance(frame, tickNs, pick);
        gDevice.appType = frame.layer->appType;
        host::setTimeNs(frame.nowNs);
        account.tick(frame);
        brevoldRefresh();
        ASSERT_EQ(takeCalls(), account.takeDue());

        account.report(frame);
        ASSERT_EQ(submit(infoOf(frame)), account.takeDue());

        frame.nowNs += static_cast<int64_t>(pick(3)) * 9000000;
        host::setTimeNs(frame.nowNs);
        ASSERT_EQ(brevoldMonitor(frame.queued, frame.rate->periodNs), account.vsync(frame));
        for (size_t i = 0; i <= pick(2); ++i) {
            account.compose(frame);
            ASSERT_EQ(brevoldScaling(frame.queued, frame.isSuppressed), 0);
            ASSERT_EQ(takeCalls(), account.takeDue());
        }
    }
}
