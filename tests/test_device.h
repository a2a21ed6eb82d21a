#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "brevold/brevold.h"
#include "host/virtual_platform.h"
#include "host/workers.h"

namespace brevold::test {

namespace host = brevold::host;

constexpr int64_t kPeriod60Ns = 16666666, kPeriod90Ns = 11111111, kPeriod120Ns = 8333333;
constexpr int64_t kSecondNs = 1000000000;
constexpr char kLayer[] = "com.example.game/com.example.game.Main#7";
constexpr char kBoostHint[] = "hint 4166 2000 0x122710";
constexpr char kClient[] = "libvnx-perfd-client_system.so";
constexpr char kFeatures[] = "libfeatgate_system.so";
constexpr int kSf = 0, kQb = 1;

// What the run-time bound libraries and the property service answer, and what they were asked.
struct Device {
    // What stands here goes before isOn, which turns on every switch.
    std::map<std::string, std::string> properties;
    bool isOn = true;
    std::set<int> features = {4, 5};
    int appType = 2;
    // The hint's result; counts on by itself while positive.
    int nextHandle = 1;
    // Asked instead, on whichever thread sends the hint, where not null.
    int (*onHint)(int hint, int duration, int type) = nullptr;
    // Called while the service works on a hint or a query, on the caller's thread.
    void (*duringCall)() = nullptr;
    // "hint 4166 19 0x4101f4; release 7; query 5633 com.example.game", in order.
    std::string calls;
    // Property names with their defaults, feature numbers, in order.
    std::string reads;
};

extern Device gDevice;

void advance(int64_t byNs);

// Each test runs in a process of its own, so that it meets a library that was just loaded.
struct DeviceTest : testing::Test {
    DeviceTest() { advance(100 * kSecondNs); }
    void TearDown() override { host::settle(); }
};

// A device with everything on, initialised, with two frames of kLayer reported.
struct TargetAppTest : DeviceTest {
    void SetUp() override;
};

// Opens a stand-in, so that the library's own dlopen finds it.
void* provide(const std::string& library, const std::string& without = "nothing");

// Resets, initialises and waits until the workers wait.
bool restart();

// The same, and reports a layer named so twice. It has to be a new name: the current layer's
// outlives the reset, and the service is asked of new names only.
void restartWith(const std::string& layer);

// The calls since the last time, after the workers have sent what was posted.
std::string takeCalls();

// The texts logged, and the labels of the sections begun, since the last time.
std::string takeLogTexts();
std::string takeLabels();

// Refresh ticks at that interval.
void tick(int64_t intervalNs, int count = 1);

// Ticks of one whole window, from an idle gap on; what they make the workers send is forgotten.
void measure(int64_t intervalNs);

// A frame whose headroom asks for 0.282 of the performance where it is of two queued frames.
LayerFrameInfo frame(int32_t queuedFrames = 0, const std::string& name = kLayer,
                     int64_t periodNs = kPeriod60Ns);

// The calls that one of these leads to.
std::string submit(LayerFrameInfo info);
std::string request(float scale, unsigned direction, unsigned boostLevel, int channel);
std::string wake(size_t thread);

// Whether a mode stands in which the "QB" worker sends requests.
bool hasMode();

// The statement runs in a copy of the process that has no workers: what waits for one is ended too.
#define EXPECT_ABORT(statement) \
    EXPECT_EXIT((alarm(5), statement), testing::KilledBySignal(SIGABRT), "")

}  // namespace brevold::test
