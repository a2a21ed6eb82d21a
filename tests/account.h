#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

#include "tests/frames.h"

namespace brevold::test {

/** Everything that an initialisation can turn on. */
struct Switches {
    bool scaling, scalingDown, jankBoost, smoothMotion, refreshRate;
};

/**
 * Predicts every call of the performance service, from the contract of the entry points and not
 * from the state of the library. Call a function before the entry point with the same input. The
 * frames' rates must change only after idle gaps, and the service must number the hints from 1.
 */
class Account {
  public:
    /** A new initialisation, which starts new workers. */
    void restart(const Switches& switches) {
        mSwitches = switches;
        mState = {};
    }

    void tick(const Frame& frame) {
        if (!mSwitches.scaling && !mSwitches.jankBoost) return;
        if (frame.nowNs - mState.tickNs >= 150000000) {
            mState.mode = 5;
            mState.windowStartNs = 0;
        } else if (mState.windowStartNs == 0) {
            mState.windowStartNs = frame.nowNs;
        } else if (frame.nowNs - mState.windowStartNs > 1000000000) {
            mState.mode = frame.rate->mode;
            mState.windowStartNs = 0;
        }
        mState.tickNs = frame.nowNs;
        if (mState.unreleased != 0) addHint(4166, 0, std::exchange(mState.unreleased, 0));
    }

    void report(const Frame& frame) {
        const int64_t periodNs = frame.rate->periodNs;
        if (mSwitches.refreshRate && std::exchange(mRatePeriodNs, periodNs) != periodNs) {
            if (mRateHandle != 0) addCall("release " + std::to_string(mRateHandle));
            mRateHandle = addHint(4244, 0, 1000000000 / periodNs);
        }
        if (!mSwitches.scaling && !mSwitches.jankBoost) return;
        if (!frame.isSkipped && frame.layer != &kDebugLayer) track(frame);
        if (frame.isFirstOfQueue) return;
        mState.monitoredPeriodNs = periodNs;
        const bool isMonitored = isActing() && !frame.hasOtherPeer;
        if (std::exchange(mState.hasStamp, true) && isMonitored && isModeOfPeriod()) scale(frame);
    }

    /** Returns the answer of brevoldCheck. */
    bool isActing() const { return mSwitches.scaling && mState.isTarget; }

    /** Returns the verdict. */
    int vsync(const Frame& frame) {
        const bool isBusy = frame.queued >= 2;
        const bool isBusyTwice = std::exchange(mState.wasBusy, isBusy) && isBusy;
        const int64_t sinceTickNs = frame.nowNs - mState.tickNs;
        return mSwitches.jankBoost && mState.isTarget && mState.isUnchanged && !isBusyTwice &&
               frame.rate->periodNs == 16666666 && mState.mode <= 1 && sinceTickNs > 0 &&
               sinceTickNs < 18000000;
    }

    void compose(const Frame& frame) {
        const bool isAt30Fps = mState.mode == 1 && mState.monitoredPeriodNs == 16666666 &&
                               (mSwitches.smoothMotion || mSwitches.jankBoost);
        const bool isDue = isModeOfPeriod() ? frame.queued >= 2 : isAt30Fps && frame.queued >= 3;
        if (!isActing() || !isDue || frame.isSuppressed) return;
        if (mState.unreleased++ == 0) addHint(4166, 2000, 0x122710);
    }

    /** Returns the calls due since the last time, such as "hint 4166 19 0x4101f4; release 7". */
    std::string takeDue() { return std::exchange(mDue, {}); }

  private:
    void track(const Frame& frame) {
        if (mLayer != frame.layer && *frame.layer->package != '\0') {
            addCall(std::string("query 5633 ") + frame.layer->package);
            mState.appType = frame.layer->appType;
        }
        mState.isTarget = mState.appType == 2;
        mState.isUnchanged = mLayer == frame.layer && mState.key == frame.key;
        if (!mState.isUnchanged) mState.mode = 5;
        mLayer = frame.layer;
        mState.key = frame.key;
    }

    void scale(const Frame& frame) {
        const int duration = mState.mode == 2 ? 19 : mState.mode == 3 ? 13 : 10;
        const int64_t budgetNs = frame.rate->periodNs - 1000000;
        const int64_t thousandNs = 1000 * intervalNsOf(frame);
        if (frame.queued >= 2 && mSwitches.scalingDown) {
            const int64_t scale = thousandNs / (budgetNs * frame.queued - kStampAgeNs);
            addHint(4166, duration, 0x410000 | std::min<int64_t>(scale, 1000));
        } else if (frame.queued == 1 && frame.isSlow) {
            addHint(4166, duration, 0x520000 | thousandNs / (2 * budgetNs - kStampAgeNs));
        }
    }

    bool isModeOfPeriod() const {
        return std::any_of(std::begin(kRates), std::end(kRates), [this](const Rate& rate) {
            return rate.mode == mState.mode && rate.tickNs == rate.periodNs &&
                   rate.periodNs == mState.monitoredPeriodNs;
        });
    }

    void addCall(const std::string& call) { mDue += (mDue.empty() ? "" : "; ") + call; }

    int addHint(int identifier, int duration, int64_t type) {
        char text[80];
        snprintf(text, sizeof(text), "hint %d %d 0x%x", identifier, duration,
                 static_cast<unsigned>(type));
        addCall(text);
        return ++mHints;
    }

    Switches mSwitches = {};
    std::string mDue;
    int mHints = 0;
    int mRateHandle = 0;
    int64_t mRatePeriodNs = 0;
    const Layer* mLayer = nullptr;

    /** Forgotten by a new initialisation. */
    struct State {
        int32_t mode = 5, unreleased = 0, key = 0, appType = -1;
        int64_t windowStartNs = 0, tickNs = 0, monitoredPeriodNs = 0;
        bool hasStamp = false, isTarget = false, isUnchanged = false, wasBusy = false;
    };
    State mState;
};

/**
 * Plays the next frame to the library. pick(n) returns a random number below n, setTime(ns) sets
 * the clock, appTypeIs(type) the service's next answers. After each entry point, isDue(text)
 * compares the calls of the service. Returns false once something differs.
 */
template <typename Pick, typename SetTime, typename AppTypeIs, typename IsDue>
bool playFrame(Account& account, Frame& frame, int64_t& tickNs, Pick pick, SetTime setTime,
               AppTypeIs appTypeIs, IsDue isDue) {
    advance(frame, tickNs, pick);
    appTypeIs(frame.layer->appType);
    setTime(frame.nowNs);
    account.tick(frame);
    brevoldRefresh();
    if (!isDue(account.takeDue()) || brevoldCheck("sf") != account.isActing()) return false;
    account.report(frame);
    LayerFrameInfo info = infoOf(frame);
    brevoldOnFrameAvailable(&info);
    if (!isDue(account.takeDue())) return false;
    setTime(frame.nowNs += static_cast<int64_t>(pick(3)) * 9000000);
    const int verdict = account.vsync(frame);
    if (brevoldMonitor(frame.queued, frame.rate->periodNs) != verdict) return false;
    account.compose(frame);
    return brevoldScaling(frame.queued, frame.isSuppressed) == 0 && isDue(account.takeDue());
}

}  // namespace brevold::test
