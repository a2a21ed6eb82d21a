#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "brevold/brevold.h"
#include "host/virtual_platform.h"

namespace brevold::test {

using Texts = std::vector<std::string>;

constexpr int64_t kPeriod60Ns = 16666666;
constexpr int64_t kPeriod90Ns = 11111111;
constexpr int64_t kPeriod120Ns = 8333333;
constexpr int64_t kSecondNs = 1000000000;
constexpr char kLayer[] = "com.example.game/com.example.game.Main#7";

/** What the run-time bound libraries and the property service answer, and what they were asked. */
struct Device {
    std::map<std::string, std::string> properties;
    std::set<int> features;
    int appType = 2;
    /** The hint's result; counts on by itself while positive. */
    int nextHandle = 1;
    /** Asked instead, on whichever thread sends the hint, where not null. */
    int (*onHint)(int hint, int duration, int type) = nullptr;
    /** Called while the service works on a hint, on the caller's thread. */
    void (*duringHint)() = nullptr;
    /** "hint 4166 19 0x4101f4", "release 7", "query 5633 com.example.game", in order. */
    Texts calls;
    /** Property names, feature numbers, in order. */
    Texts reads;
};

extern Device gDevice;

/** Each test runs in a process of its own, so that it meets a library that was just loaded. */
class DeviceTest : public testing::Test {
  protected:
    DeviceTest();

    /** Opens a stand-in, so that the library's own dlopen finds it. */
    static void* provideClient(const std::string& variant = "whole");
    static void* provideFeatures(const std::string& variant = "whole");

    /** Every switch on, debug output too. */
    static void switchEverythingOn();

    /** Initialises and waits until the workers wait. */
    static bool initialise();

    /**
     * Reads the properties anew, and reports a layer named so twice. It has to be a new name: the
     * current layer's outlives the reset, and the service is asked of new names only.
     */
    static void restartWith(const std::string& layer);

    /** A device with everything on, initialised, with the first frame of kLayer reported. */
    static void startTargetApp();

    /** The calls since the last time, after the workers have sent what was posted. */
    static Texts takeCalls();

    /** The texts logged since the last time. */
    static Texts takeLogTexts();

    /** The labels of the sections begun since the last time. */
    static Texts takeLabels();

    static void advance(int64_t byNs);

    /** Refresh ticks of that interval over a little more than one window, from an idle gap on. */
    static void measure(int64_t intervalNs);

    /** Reports a frame; by default of the target application's layer. */
    static void report(int32_t queuedFrames, int64_t diffSFToQBNs, int64_t diffQBNs,
                       int64_t periodNs, const std::string& name = kLayer);
};

}  // namespace brevold::test
