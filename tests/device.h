#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "brevold/brevold.h"
#include "host/virtual_platform.h"
#include "host/workers.h"

namespace brevold::test {

namespace host = brevold::host;

// Answers of the libraries opened at run time and of the property service, and a record of calls.
struct Device {
    // These override isOn, which turns on every switch.
    std::map<std::string, std::string> properties;
    bool isOn = true;
    std::set<int> features = {4, 5};
    int appType = 2;
    // Result of the next hint; incremented by each hint if positive.
    int nextHandle = 1;
    // If not null, handles hints instead, on the thread that sends them.
    int (*onHint)(int hint, int duration, int type) = nullptr;
    // Called during each hint and query, on the caller's thread.
    void (*duringCall)() = nullptr;
    // "hint 4166 19 0x4101f4; release 7; query 5633 com.example.game", in order.
    std::string calls;
    // Property names with their defaults, feature numbers, in order.
    std::string reads;
};

extern Device gDevice;

// Adds a text to a list with semicolons.
void append(std::string& list, const std::string& text);

// Returns the calls since the last time, after the workers have sent all requests.
std::string takeCalls();

}  // namespace brevold::test
