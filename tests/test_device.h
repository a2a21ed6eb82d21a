#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <string>
#include <utility>

#include "tests/device.h"

namespace brevold::test {

constexpr int64_t kPeriod60Ns = 16666666, kPeriod90Ns = 11111111, kPeriod120Ns = 8333333;
constexpr int64_t kSecondNs = 1000000000;
constexpr char kLayer[] = "com.example.game/com.example.game.Main#7";
constexpr char kBoostHint[] = "hint 4166 2000 0x122710";
constexpr char kClient[] = "libvnx-perfd-client_system.so";
constexpr char kFeatures[] = "libfeatgate_system.so";
constexpr int kSf = 0, kQb = 1;

void advance(int64_t byNs);

// Each test runs in a process of its own, with a newly loaded library.
struct DeviceTest : testing::Test {
    DeviceTest() { advance(100 * kSecondNs); }
    void TearDown() override { host::settle(); }
};

// An initialised device with everything on, after two frames of kLayer.
struct TargetAppTest : DeviceTest {
    void SetUp() override;
};

// Opens a fake, which the library's own dlopen then finds.
void* provide(const std::string& library, const std::string& without = "nothing");

// Resets and initialises the library, then waits for the workers.
bool restart();

// The same, then reports two frames of a layer. Pass a new name: a reset keeps the name of the
// current layer, and the service is only asked about new names.
void restartWith(const std::string& layer);

// Return the log texts and the labels of trace sections since the last time.
std::string takeLogTexts();
std::string takeLabels();

// Refresh ticks at this interval.
void tick(int64_t intervalNs, int count = 1);

// An idle gap, then the ticks of a whole window. Discards the calls.
void measure(int64_t intervalNs);

// A frame; with two queued frames, its headroom gives a DOWN request of scale 0.282.
LayerFrameInfo frame(int32_t queuedFrames = 0, const std::string& name = kLayer,
                     int64_t periodNs = kPeriod60Ns);

// Each returns the resulting calls.
std::string submit(LayerFrameInfo info);
std::string request(float scale, unsigned direction, unsigned boostLevel, int channel);
std::string wake(size_t thread);

// Starts a request of scale 0.5 by a worker. The hint stays in progress until endHint().
void startHint(int channel);
void endHint();

// Returns true if the "QB" worker sends requests in the current mode.
bool hasMode();

// Runs the statement in a forked process, which has no workers. The
// alarm ends a call that waits for a worker.
#define EXPECT_ABORT(statement) \
    EXPECT_EXIT((alarm(60), statement), testing::KilledBySignal(SIGABRT), "")

}  // namespace brevold::test
