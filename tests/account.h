#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

#include "tests/device.h"
#include "tests/frames.h"

namespace brevold::test {

/**
 * Predicts every call of the performance service, from the contract of the entry points and not
 * from the state of the library. Call a function before the entry point with the same input. The
 * frames' rates must change only after idle gaps, and the service must number the hints from 1.
 */
class Account {
  public:
    /**
     * Turns on random switches of the device for a new initialisation, which starts new workers.
     * pick(n) returns a random number below n. Returns true if any feature is on.
     */
    template <typename Pick>
    bool restart(Pick pick) {
        gDevice.properties = {{"vendor.perf.brevold.debug", "0"},
                              {"vendor.perf.brevold.debug.layers", kDebugLayer.name}};
        gDevice.features = {};
        const auto isOn = [&pick](const char* property, int feature) {
            const bool isSet = pick(4) != 0;
            const bool isAllowed = feature == 0 || pick(4) != 0;
            gDevice.properties[property] = isSet ? "1" : "0";
            if (isAllowed) gDevice.features.insert(feature);
            return isSet && isAllowed;
        };
        mSwitches = {isOn("vendor.perf.pfar.enable", 5), isOn("vendor.perf.pfar.down.enable", 0),
                     isOn("vendor.perf.jr10.enable", 4),
                     isOn("vendor.display.use_smooth_motion", 0),
                     isOn("vendor.perf.fps_switch.enable", 0)};
        mState = {};
        return mSwitches.scaling || mSwitches.jankBoost || mSwitches.refreshRate;
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
            if (mRateHandle != 0) append(mDue, "release " + std::to_string(mRateHandle));
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
            append(mDue, std::string("query 5633 ") + frame.layer->package);
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

    int addHint(int identifier, int duration, int64_t type) {
        char text[80];
        snprintf(text, sizeof(text), "hint %d %d 0x%x", identifier, duration,
                 static_cast<unsigned>(type));
        append(mDue, text);
        return ++mHints;
    }

    struct Switches {
        bool scaling, scalingDown, jankBoost, smoothMotion, refreshRate;
    };
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
 * Plays the next frame to the library. pick(n) returns a random number below n. Returns a line for
 * each entry point whose result, or whose calls of the service, are not those due.
 */
template <typename Pick>
std::string playFrame(Account& account, Frame& frame, int64_t& tickNs, Pick pick) {
    std::string differences;
    const auto compare = [&](int made, int due) {
        const std::string madeCalls = takeCalls() + ", " + std::to_string(made);
        const std::string dueCalls = account.takeDue() + ", " + std::to_string(due);
        if (madeCalls != dueCalls) differences += madeCalls + "; due are " + dueCalls + '\n';
    };
    advance(frame, tickNs, pick);
    gDevice.appType = frame.layer->appType;
    host::setTimeNs(frame.nowNs);
    account.tick(frame);
    brevoldRefresh();
    compare(brevoldCheck("sf"), account.isActing());
    account.report(frame);
    LayerFrameInfo info = infoOf(frame);
    compare(brevoldOnFrameAvailable(&info), 0);
    host::setTimeNs(frame.nowNs += static_cast<int64_t>(pick(3)) * 9000000);
    const int verdict = account.vsync(frame);
    compare(brevoldMonitor(frame.queued, frame.rate->periodNs), verdict);
    account.compose(frame);
    compare(brevoldScaling(frame.queued, frame.isSuppressed), 0);
    return differences;
}

}  // namespace brevold::test
