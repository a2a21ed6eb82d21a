#pragma once

#include <cstdint>
#include <string>

#include "tests/frames.h"

namespace brevold::test {

struct Switches {
    bool scaling = true;
    bool scalingDown = true;
    bool jankBoost = true;
    bool smoothMotion = true;
    bool refreshRate = true;
};

/**
 * Predicts every call of the performance service, from the contract of the entry points and not
 * from the state of the library. Call a function before the entry point with the same input. The
 * frames' rates must change only after idle gaps, and the service must number the hints from 1.
 */
class Account {
  public:
    explicit Account(const Switches& switches) : mSwitches(switches) {}

    /** A new initialisation, which starts new workers. */
    void restart(const Switches& switches);

    void tick(const Frame& frame);
    void report(const Frame& frame);
    /** Returns the verdict. */
    int vsync(const Frame& frame);
    void compose(const Frame& frame);

    /** Returns the calls due since the last time, such as "hint 4166 19 0x4101f4; release 7". */
    std::string takeDue();

  private:
    void track(const Frame& frame);
    void scale(const Frame& frame);
    bool isModeOfPeriod() const;
    void addCall(const std::string& call);
    int32_t addHint(int32_t identifier, int32_t duration, int64_t type);

    Switches mSwitches;
    std::string mDue;
    int32_t mHints = 0;
    const Layer* mLayer = nullptr;
    int64_t mRatePeriodNs = 0;
    int32_t mRateHandle = 0;

    /** What an initialisation resets. */
    struct State {
        int32_t mode = 5;
        bool isWindowOpen = false;
        int64_t windowStartNs = 0;
        int64_t tickNs = 0;
        int32_t unreleased = 0;
        int64_t monitoredPeriodNs = 0;
        bool hasStamp = false;
        int32_t key = 0;
        int32_t appType = -1;
        bool isTarget = false;
        bool isUnchanged = false;
        bool wasBusy = false;
    };
    State mState;
};

}  // namespace brevold::test
