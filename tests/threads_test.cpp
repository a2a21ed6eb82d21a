#include <array>
#include <atomic>
#include <thread>

#include "tests/test_device.h"

using namespace brevold::test;

constexpr size_t kEnoughHints = 300;

using Hint = std::pair<int, int>;  // duration and type word

// Hints of each worker. While they run, only the counts are read, which do not order the threads.
static std::array<std::vector<Hint>, 2> gHints;
static std::array<std::atomic<size_t>, 2> gCounts;

static int recordHint(int hint, int duration, int type) {
    if (hint != 4166) return 1;
    const size_t channel = (type & 1 << 22) != 0 ? kQb : kSf;
    gHints[channel].push_back({duration, type});
    gCounts[channel].store(gHints[channel].size(), std::memory_order_relaxed);
    return 1;
}

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

TEST_F(DeviceTest, ConcurrentCallsSendWholeRequestsAndReleaseEveryBoost) {
    gDevice.onHint = recordHint;
    provide(kClient);
    provide(kFeatures);
    gDevice.properties["vendor.perf.brevold.debug"] = "0";  // debug output would order the threads
    ASSERT_TRUE(brevoldInit());

    std::atomic<int> boosts = 0;
    const auto compose = [&] {
        for (int i = 0; !isEnough(); ++i) {
            brevoldMonitor(i % 4, kPeriod60Ns);
            // A post takes the worker's lock, which orders the threads, so most calls make none.
            const bool isPosting = i % 16 == 0;
            EXPECT_EQ(brevoldScaling(isPosting ? 3 : 1, 0), 0);
            if (!brevoldCheck("sf") || !isPosting) continue;
            android::energyScaling(0.75f, 1, 0, kQb);
            android::energyScaling(10.0f, 2, 2, kSf);
            boosts.fetch_add(1, std::memory_order_relaxed);
        }
    };
    std::thread threads[] = {std::thread([] {
                                 for (int i = 0; !isEnough(); ++i)
                                     reportFrame(i);
                             }),
                             std::thread([] {
                                 // A verdict needs 30 fps.
                                 for (int i = 0; !isEnough(); ++i)
                                     tick(i / 128 % 4 == 3 ? kSecondNs / 30 : kPeriod60Ns);
                             }),
                             std::thread(compose), std::thread(compose)};
    for (std::thread& thread : threads)
        thread.join();
    // A signal between two passes of a worker is lost, so send one more request.
    host::settle();
    request(10.0f, 2, 2, kSf);
    android::releaseScaling();
    host::settle();

    const std::set<Hint> whole = {{19, 0x4101f4}, {19, 0x5207d0}, {19, 0x4102ee}};
    for (const Hint& hint : gHints[kQb])
        EXPECT_EQ(whole.count(hint), 1u) << hint.first << ' ' << hint.second;
    bool isBoosted = false;
    int released = 0;
    for (const auto& [duration, word] : gHints[kSf]) {
        const bool isBoost = duration == 2000 && word == 0x122710;
        EXPECT_TRUE(isBoost ? !isBoosted : duration == 0) << duration << ' ' << word;
        if (!isBoost) released += word;
        isBoosted = isBoost;
    }
    EXPECT_FALSE(isBoosted);
    EXPECT_GT(released, boosts);  // brevoldScaling adds boosts
}
