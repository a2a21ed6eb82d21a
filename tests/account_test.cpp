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
        ASSERT_TRUE(playFrame(
                account, frame, tickNs, pick, host::setTimeNs,
                [](int appType) { gDevice.appType = appType; },
                [](const std::string& due) {
                    const std::string calls = takeCalls();
                    EXPECT_EQ(calls, due);
                    return calls == due;
                }));
    }
    EXPECT_TRUE(host::takeTraceMarks().empty());  // debug output is off
    EXPECT_EQ(takeLogTexts(), "");
}
