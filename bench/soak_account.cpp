#include "bench/soak_account.h"

#include "host/hint.h"

namespace brevold::bench {

namespace {

constexpr int64_t kWindowNs = 1000000000;
constexpr int64_t kVerdictEndNs = 18000000;

}  // namespace

void Tally::add(const host::ServiceCall& call) {
    if (call.kind == host::ServiceCall::Kind::Query) {
        ++queries;
        return;
    }
    if (call.kind == host::ServiceCall::Kind::Release) {
        ++rateReleases;
        return;
    }
    const host::Hint hint = host::decodeHint(call);
    switch (hint.kind) {
        case host::HintKind::Down:
        case host::HintKind::Up:
            ++scalings;
            break;
        case host::HintKind::JankBoost:
            ++boosts;
            break;
        case host::HintKind::Release:
            ++releases;
            boostsReleased += hint.type;
            break;
        case host::HintKind::RefreshRate:
            ++rateHints;
            break;
    }
}

bool Tally::operator==(const Tally& other) const {
    return scalings == other.scalings && boosts == other.boosts && releases == other.releases &&
           boostsReleased == other.boostsReleased && rateHints == other.rateHints &&
           rateReleases == other.rateReleases && queries == other.queries &&
           verdicts == other.verdicts;
}

void Account::tick(const Frame& frame) {
    if (android::isIdleGap(frame.nowNs - mTickNs)) {
        mMode = android::kModeUnclassified;
        mIsWindowOpen = false;
    } else if (!mIsWindowOpen) {
        mIsWindowOpen = true;
        mWindowStartNs = frame.nowNs;
    } else if (frame.nowNs - mWindowStartNs > kWindowNs) {
        mMode = frame.rate->mode;
        mIsWindowOpen = false;
    }
    mTickNs = frame.nowNs;
    if (mUnreleased == 0) return;
    ++mDue.releases;
    mDue.boostsReleased += mUnreleased;
    mUnreleased = 0;
}

void Account::report(const Frame& frame) {
    if (mRatePeriodNs != frame.rate->periodNs) {
        if (mRatePeriodNs != 0) ++mDue.rateReleases;
        ++mDue.rateHints;
        mRatePeriodNs = frame.rate->periodNs;
    }
    if (!frame.isSkipped && frame.layer != &kDebugLayer) track(frame);
    if (frame.isFirstOfQueue) return;
    mMonitoredPeriodNs = frame.rate->periodNs;
    const bool isDue = frame.queued >= 2 || (frame.queued == 1 && frame.isSlow);
    if (mIsTarget && isDue && mHasStamp && isModeOfPeriod()) ++mDue.scalings;
    mHasStamp = true;
}

void Account::vsync(const Frame& frame) {
    const bool isBusy = frame.queued >= 2;
    const int64_t sinceTickNs = frame.nowNs - mTickNs;
    if (mIsTarget && mIsUnchanged && frame.rate->periodNs == kPeriod60Ns &&
        mMode <= android::kMode30Fps && !(isBusy && mWasBusy) && sinceTickNs > 0 &&
        sinceTickNs < kVerdictEndNs) {
        ++mDue.verdicts;
    }
    mWasBusy = isBusy;
}

void Account::compose(const Frame& frame) {
    const bool isPiledUp = (isModeOfPeriod() && frame.queued >= 2) ||
                           (mMode == android::kMode30Fps && mMonitoredPeriodNs == kPeriod60Ns &&
                            frame.queued >= 3);
    if (!mIsTarget || !isPiledUp || frame.isSuppressed) return;
    if (mUnreleased++ == 0) ++mDue.boosts;
}

void Account::track(const Frame& frame) {
    if (mLayer != frame.layer && frame.layer->appType != 0) {
        ++mDue.queries;
        mAppType = frame.layer->appType;
    }
    mIsTarget = mAppType == android::kTargetAppType;
    mIsUnchanged = mLayer == frame.layer && mKey == frame.key;
    if (!mIsUnchanged) mMode = android::kModeUnclassified;
    mLayer = frame.layer;
    mKey = frame.key;
}

bool Account::isModeOfPeriod() const {
    for (const Rate& rate : kRates) {
        if (rate.mode == mMode) {
            return rate.tickNs == rate.periodNs && rate.periodNs == mMonitoredPeriodNs;
        }
    }
    return false;
}

}  // namespace brevold::bench
