#include <atomic>
#include <thread>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

constexpr int kQbBit = 1 << 22;
constexpr int kBoostWord = 0x122710;
constexpr size_t kEnoughHints = 300;

using Hint = std::pair<int, int>;  // duration and type word

/** What one worker sent. Only the count is read while it runs, and orders nothing. */
struct Sent {
    std::vector<Hint> hints;
    std::atomic<size_t> count;
};

enum { kSf, kQb };
Sent gSent[2];

int recordHint(int hint, int duration, int type) {
    if (hint != 4166) return 1;
    Sent& sent = gSent[(type & kQbBit) != 0 ? kQb : kSf];
    sent.hints.push_back({duration, type});
    sent.count.store(sent.hints.size(), std::memory_order_relaxed);
    return 1;
}

bool isEnough() {
    return gSent[kSf].count.load(std::memory_order_relaxed) >= kEnoughHints &&
           gSent[kQb].count.load(std::memory_order_relaxed) >= kEnoughHints;
}

/** Headroom of a half, to scale down, and at every other frame an interval of twice the budget. */
void reportFrame(int number) {
    constexpr int64_t kBudgetNs = kPeriod60Ns - 1000000;
    LayerFrameInfo info = {};
    info.layerName = info.peerLayerName = "com.example.game#" + std::to_string(number / 256);
    info.refreshPeriod = kPeriod60Ns;
    info.sfTime = info.qbTime = 100 * kSecondNs;
    info.lastMaxQueuedFrames = 1 + number % 2;
    info.lastQbTime = info.qbTime - (number % 2 == 1 ? 1 : 4) * kBudgetNs;
    brevoldOnFrameAvailable(&info);
}

/** Whether refresh ticks come on the thread of the frame reports or on one of their own. */
class ThreadsTest : public DeviceTest, public testing::WithParamInterface<bool> {};

TEST_P(ThreadsTest, WorkersSendWholeRequestsAndReleaseEveryBoost) {
    gDevice.onHint = recordHint;
    provideClient();
    provideFeatures();
    switchEverythingOn();
    gDevice.properties["vendor.perf.brevold.debug"] = "0";  // its output would order the threads
    ASSERT_TRUE(initialise());

    const bool ticksApart = GetParam();
    int tickNumber = 0;
    const auto tick = [&] {
        advance(++tickNumber / 128 % 4 == 3 ? kSecondNs / 30 : kPeriod60Ns);  // a verdict wants 30
        brevoldRefresh();
    };
    std::thread reports([&] {
        for (int i = 0; !isEnough(); ++i) {
            reportFrame(i);
            if (!ticksApart) tick();
        }
    });
    std::thread ticks([&] {
        while (ticksApart && !isEnough())
            tick();
    });
    int boosts = 0;
    std::thread vsyncs([&] {
        for (int i = 0; !isEnough(); ++i) {
            brevoldMonitor(i % 4, kPeriod60Ns);
            EXPECT_EQ(brevoldScaling(i % 4, 0), 0);
            if (i % 16 == 0) android::energyScaling(0.75f, 1, 0, 1);
            if (!brevoldCheck("sf")) continue;
            android::energyScaling(10.0f, 2, 2, 0);
            ++boosts;
        }
    });
    for (std::thread* thread : {&reports, &ticks, &vsyncs})
        thread->join();
    // A wake-up between two passes of a worker is lost: one more request makes up for it.
    host::settle();
    android::energyScaling(10.0f, 2, 2, 0);
    host::settle();
    android::releaseScaling();
    host::settle();

    const std::set<Hint> whole = {{19, 0x4101f4}, {19, 0x5207d0}, {19, 0x4102ee}};
    for (const Hint& hint : gSent[kQb].hints)
        EXPECT_EQ(whole.count(hint), 1u) << hint.first << ' ' << hint.second;
    bool isBoosted = false;
    int released = 0;
    for (const auto& [duration, word] : gSent[kSf].hints) {
        if (duration == 2000) {
            EXPECT_FALSE(isBoosted);
            EXPECT_EQ(word, kBoostWord);
        } else {
            EXPECT_EQ(duration, 0);
            released += word;
        }
        isBoosted = duration == 2000;
    }
    EXPECT_FALSE(isBoosted);
    EXPECT_GT(released, boosts);  // brevoldScaling's own boosts are counted too
}

INSTANTIATE_TEST_SUITE_P(Ticks, ThreadsTest, testing::Bool(),
                         [](const auto& test) { return test.param ? "apart" : "withReports"; });

}  // namespace
}  // namespace brevold::test
