#include <array>
#include <atomic>
#include <thread>

#include "tests/test_device.h"

using namespace brevold::test;

constexpr size_t kEnoughHints = 1000;

// Hints of each worker; their numbers do not order the threads.
static std::array<std::atomic<size_t>, 2> gCounts;
static bool gIsBoosted;

static bool isEnough() {
    return gCounts[kSf].load(std::memory_order_relaxed) >= kEnoughHints &&
           gCounts[kQb].load(std::memory_order_relaxed) >= kEnoughHints;
}

// Alternates a DOWN request of scale 0.5 and an UP request of scale 2.
static void reportFrame(int number) {
    constexpr int64_t kBudgetNs = kPeriod60Ns - 1000000;
    LayerFrameInfo info = frame(1 + number % 2, "com.example.game#" + std::to_string(number / 256));
    info.sfTime = info.qbTime;
    info.lastQbTime = info.qbTime - (number % 2 == 1 ? 1 : 4) * kBudgetNs;
    brevoldOnFrameAvailable(&info);
}

// For the race detector; schedule_test checks the order and the content of the hints.
TEST_F(DeviceTest, ConcurrentCallsReleaseEveryBoost) {
    gDevice.onHint = [](int hint, int duration, int type) {
        if (hint != 4166) return 1;
        const size_t channel = (type & 1 << 22) != 0 ? kQb : kSf;
        if (channel == kSf) gIsBoosted = duration != 0;
        gCounts[channel].fetch_add(1, std::memory_order_relaxed);
        return 1;
    };
    provide(kClient);
    provide(kFeatures);
    gDevice.properties["vendor.perf.brevold.debug"] = "0";  // debug output would order the threads
    ASSERT_TRUE(brevoldInit());

    const auto compose = [] {
        for (int i = 0; !isEnough(); ++i) {
            brevoldMonitor(i % 4, kPeriod60Ns);
            // A post takes the worker's lock, which orders the threads, so most calls make none.
            const bool isPosting = i % 16 == 0;
            brevoldScaling(isPosting ? 3 : 1, 0);
            if (!brevoldCheck("sf") || !isPosting) continue;
            android::energyScaling(0.75f, 1, 0, kQb);
            android::energyScaling(10.0f, 2, 2, kSf);
        }
    };
    const auto report = [] {
        for (int i = 0; !isEnough(); ++i)
            reportFrame(i);
    };
    const auto refresh = [] {
        // A verdict needs 30 fps. Idle gaps reset the mode until the next window ends.
        for (int i = 0; !isEnough(); ++i)
            tick(i % 192 < 6 ? kSecondNs : i / 192 % 4 == 3 ? kSecondNs / 30 : kPeriod60Ns);
    };
    std::thread threads[] = {std::thread(report), std::thread(refresh), std::thread(compose),
                             std::thread(compose)};
    for (std::thread& thread : threads)
        thread.join();
    // A signal between two passes of a worker is lost, so send one more request.
    host::settle();
    request(10.0f, 2, 2, kSf);
    android::releaseScaling();
    host::settle();
    EXPECT_FALSE(gIsBoosted);
}
