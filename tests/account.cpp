#include "tests/account.h"

#include <algorithm>
#include <utility>

namespace brevold::test {

constexpr int64_t kSecondNs = 1000000000;

void Account::restart(const Switches& switches) {
    mSwitches = switches;
    mState = {};
}

void Account::tick(const Frame& frame) {
    if (!mSwitches.scaling && !mSwitches.jankBoost) return;
    if (frame.nowNs - mState.tickNs >= 150000000) {
        mState.mode = 5;
        mState.isWindowOpen = false;
    } else if (!mState.isWindowOpen) {
        mState.isWindowOpen = true;
        mState.windowStartNs = frame.nowNs;
    } else if (frame.nowNs - mState.windowStartNs > kSecondNs) {
        mState.mode = frame.rate->mode;
        mState.isWindowOpen = false;
    }
    mState.tickNs = frame.nowNs;
    if (mState.unreleased != 0) addHint(4166, 0, std::exchange(mState.unreleased, 0));
}

void Account::report(const Frame& frame) {
    const int64_t periodNs = frame.rate->periodNs;
    if (mSwitches.refreshRate && mRatePeriodNs != periodNs) {
        if (mRatePeriodNs != 0) addCall("release " + std::to_string(mRateHandle));
        mRateHandle = addHint(4244, 0, kSecondNs / periodNs);
        mRatePeriodNs = periodNs;
    }
    if (!mSwitches.scaling && !mSwitches.jankBoost) return;
    if (!frame.isSkipped && frame.layer != &kDebugLayer) track(frame);
    if (frame.isFirstOfQueue) return;
    mState.monitoredPeriodNs = periodNs;
    const bool isMonitored =
            mSwitches.scaling && mState.isTarget && mState.hasStamp && !frame.hasOtherPeer;
    if (isMonitored && isModeOfPeriod()) scale(frame);
    mState.hasStamp = true;
}

void Account::scale(const Frame& frame) {
    const int32_t duration = mState.mode == 2 ? 19 : mState.mode == 3 ? 13 : 10;
    const int64_t budgetNs = frame.rate->periodNs - 1000000;
    const int64_t thousandNs = 1000 * intervalNsOf(frame);
    if (frame.queued >= 2 && mSwitches.scalingDown) {
        const int64_t scale = thousandNs / (budgetNs * frame.queued - kStampAgeNs);
        addHint(4166, duration, 0x410000 | std::min<int64_t>(scale, 1000));
    } else if (frame.queued == 1 && frame.isSlow) {
        addHint(4166, duration, 0x520000 | thousandNs / (2 * budgetNs - kStampAgeNs));
    }
}

int Account::vsync(const Frame& frame) {
    const bool isBusy = frame.queued >= 2;
    const int64_t sinceTickNs = frame.nowNs - mState.tickNs;
    const bool isBusyTwice = isBusy && std::exchange(mState.wasBusy, isBusy);
    mState.wasBusy = isBusy;
    return mSwitches.jankBoost && mState.isTarget && mState.isUnchanged &&
           frame.rate->periodNs == 16666666 && mState.mode <= 1 && !isBusyTwice &&
           sinceTickNs > 0 && sinceTickNs < 18000000;
}

void Account::compose(const Frame& frame) {
    const bool isPiledUp = (isModeOfPeriod() && frame.queued >= 2) ||
                           (mState.mode == 1 && mState.monitoredPeriodNs == 16666666 &&
                            (mSwitches.smoothMotion || mSwitches.jankBoost) && frame.queued >= 3);
    if (!mSwitches.scaling || !mState.isTarget || !isPiledUp || frame.isSuppressed) return;
    if (mState.unreleased++ == 0) addHint(4166, 2000, 0x122710);
}

std::string Account::takeDue() {
    return std::exchange(mDue, {});
}

void Account::track(const Frame& frame) {
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

bool Account::isModeOfPeriod() const {
    return std::any_of(std::begin(kRates), std::end(kRates), [this](const Rate& rate) {
        return rate.mode == mState.mode && rate.tickNs == rate.periodNs &&
               rate.periodNs == mState.monitoredPeriodNs;
    });
}

void Account::addCall(const std::string& call) {
    mDue += (mDue.empty() ? "" : "; ") + call;
}

int32_t Account::addHint(int32_t identifier, int32_t duration, int64_t type) {
    char text[80];
    snprintf(text, sizeof(text), "hint %d %d 0x%x", identifier, duration,
             static_cast<unsigned>(type));
    addCall(text);
    return ++mHints;
}

}  // namespace brevold::test
