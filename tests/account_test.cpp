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
    for (int number = 0; number < 16000; ++number) {
        SCOPED_TRACE(number);
        if (number % 2000 == 0) {
            const auto isOn = [&](const char* setting, int rounds) {
                const bool on = (rounds >> number / 2000 & 1) != 0;
                gDevice.properties[setting] = on ? "1" : "0";
                return on;
            };
            gDevice.properties = {{"vendor.perf.brevold.debug", "0"},
                                  {"vendor.perf.brevold.debug.layers", kDebugLayer.name}};
            account.restart({isOn("vendor.perf.pfar.enable", 0x6b),
                             isOn("vendor.perf.pfar.down.enable", 0x3d),
                             isOn("vendor.perf.jr10.enable", 0x97),
                             isOn("vendor.display.use_smooth_motion", 0x65),
                             isOn("vendor.perf.fps_switch.enable", 0xcd)});
            restart();
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
}
