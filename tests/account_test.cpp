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
        if (number % 500 == 0) {
            const bool isAnyOn = account.restart(pick);
            ASSERT_EQ(restart(), isAnyOn) << number;
        }
        ASSERT_EQ(playFrame(account, frame, tickNs, pick), "") << number;
    }
    EXPECT_TRUE(host::takeTraceMarks().empty());  // debug output is off
    EXPECT_EQ(takeLogTexts(), "");
}
