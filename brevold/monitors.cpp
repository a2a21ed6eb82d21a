#include <utils/Timers.h>

#include <regex>
#include <string>

#include "brevold/brevold.h"
#include "brevold/frame_rate.h"
#include "brevold/headroom.h"
#include "brevold/layer_name.h"
#include "brevold/platform.h"
#include "brevold/protocol.h"
#include "brevold/state.h"

namespace android {

namespace {

constexpr int64_t kWindowNs = 1000000000;
constexpr int64_t kVerdictSpanNs = 17999999;

// Wide gaps keep the values apart in a trace viewer.
#define BREVOLD_GAP45 "                                             "
#define BREVOLD_GAP53 BREVOLD_GAP45 "        "

using LongLong = long long;

/** Input of the headroom of one frame. Times in nanoseconds. */
struct FrameTiming {
    int32_t mode;
    int32_t queuedFrames;
    int64_t diffSFToQB;
    int64_t diffQB;
    int64_t frameBudgetNs;
};

void markScaling(const char* direction, const FrameTiming& frame, int64_t headRoom, float scale) {
    if (!gDebug) return;
    traceMarker("[%s_SCALING]mode \t%d \tscale \t%f" BREVOLD_GAP53
                "\theadRoom \t%lld \tdiffQB \t%lld \tdiffSFToQB" BREVOLD_GAP53
                "\t%lld \tlastMaxQueuedFrames \t%d",
                direction, frame.mode, static_cast<double>(scale), LongLong{headRoom},
                LongLong{frame.diffQB}, LongLong{frame.diffSFToQB}, frame.queuedFrames);
}

void scaleDown(const FrameTiming& frame) {
    const int64_t headRoom = checkedSub(frame.frameBudgetNs * frame.queuedFrames, frame.diffSFToQB);
    const float scale = downScale(frame.diffQB, headRoom);
    markScaling("DOWN", frame, headRoom, scale);
    if (!gPfarDownEnabled) return;
    energyScaling(scale, kDirectionDown, kNoBoost, kQbChannel);
    gDownCount = checkedAdd(gDownCount, 1);
}

void scaleUp(const FrameTiming& frame) {
    const int64_t headRoom = checkedSub(frame.frameBudgetNs, frame.diffSFToQB);
    const float scale = ratio(frame.diffQB, checkedAdd(headRoom, frame.frameBudgetNs));
    if (!isUpDue(scale)) return;
    markScaling("UP", frame, headRoom, scale);
    energyScaling(scale, kDirectionUp, kBoost, kQbChannel);
    gUpCount = checkedAdd(gUpCount, 1);
}

/** Returns the mode of a measured frame rate. Rates between two bands are unclassified. */
int32_t modeOf(float fps) {
    struct ModeBand {
        float above;
        float below;
        int32_t mode;
    };
    constexpr ModeBand kModeBands[] = {
            {27.0f, 32.0f, kMode30Fps},
            {47.0f, 62.0f, kMode60Fps},
            {77.0f, 92.0f, kMode90Fps},
            {107.0f, 122.0f, kMode120Fps},
    };
    if (fps > 0.0f && fps <= 27.0f) return kModeLow;
    for (const ModeBand& band : kModeBands) {
        if (fps > band.above && fps < band.below) return band.mode;
    }
    return kModeUnclassified;
}

void resetWindow() {
    gFpsWindowActive = false;
    gFrameCount = 0;
    gIntervalSum = 0.0f;
    gDownCount = gUpCount = gIdleCount = 0;
}

void reportWindow() {
    if (!gDebug) return;
    traceMarker(BREVOLD_WINDOW_TAG " \tFPS:\t%.2F \tDown:\t%d \tUp:\t%d" BREVOLD_GAP45
                                   "\tIdle:\t%d",
                modeWithoutLock(), static_cast<double>(gFps), gDownCount, gUpCount, gIdleCount);
    BREVOLD_LOGE(BREVOLD_WINDOW_TAG " \tFPS:\t%.2F \tDown:\t%d \tUp:\t%d \tIdle:\t%d",
                 modeWithoutLock(), static_cast<double>(gFps), gDownCount, gUpCount, gIdleCount);
}

// Keep the order of the conditions: the last one aborts if the stamps are extreme.
bool isBoostVerdict(int queuedFrames, int64_t periodNs, int64_t nowNs) REQUIRES(gLock) {
    if (!gJr10Enabled || !gTargetApp || !gLayerUnchanged) return false;
    const RefreshBand* const band = refreshBandOf(periodNs);
    if (band == nullptr || band->rateHz != kRate60Hz) return false;
    if (static_cast<uint32_t>(gMode) > kMode30Fps || gLastRefreshTime == 0) return false;
    if (queuedFrames >= 2 && gPrevQueueBusy) return false;
    const int64_t sinceRefreshNs = checkedSub(nowNs, gLastRefreshTime);
    return sinceRefreshNs >= 1 && sinceRefreshNs <= kVerdictSpanNs;
}

/** Returns true if frames pile up at a steady rate. */
bool isJankBoostDue(int queuedFrames) REQUIRES(gLock) {
    const RefreshBand* const band = refreshBandOf(gVsyncPeriod);
    if (band == nullptr) return false;
    if (band->mode == gMode) return queuedFrames >= 2;
    return gMode == kMode30Fps && band->rateHz == kRate60Hz && (gSmoothMotion || gJr10Enabled) &&
           queuedFrames >= 3;
}

void postJankBoostIfDue(int queuedFrames, int suppress) REQUIRES(gLock) {
    if (!gScalingEnabled || !gTargetApp) return;
    if (!isJankBoostDue(queuedFrames) || suppress != 0) return;
    energyScaling(kJankBoostScale, kDirectionUp, kBoost, kSfChannel);
    gIdleCount = checkedAdd(gIdleCount, 1);
}

}  // namespace

std::string getPackageName(const std::string& layerName) {
    // The expression defines the package, so each call compiles and runs it, but on an excerpt: an
    // application chooses the name, and backtracking through a long one stalls or aborts.
    const std::regex expression("(?:SurfaceView[-\\s\\t]+)?([^/]+).*#\\d+", std::regex::ECMAScript);
    const LayerNameExcerpt excerpt(layerName);
    std::smatch match;
    if (!std::regex_match(excerpt.text, match, expression)) return {};
    const size_t begin = excerpt.packageBegin(static_cast<size_t>(match.position(1)));
    return layerName.substr(begin, excerpt.stop - begin);
}

void brevoldAppTypeCheck(std::string layerName) {
    if (isListedLayer(layerName)) return;
    const std::string package = getPackageName(layerName);
    if (gPerfGetFeedback == nullptr || layerName == gCurrentLayer || package.empty()) return;
    gAppType = gPerfGetFeedback(kAppTypeQuery, package.c_str());
}

void brevoldLayerStatusCheck(bool skip, std::string layerName, int keyA, int keyB) {
    const ScopedLock lock(gLock);
    if (isListedLayer(layerName) || skip) return;
    gTargetApp = gAppType == kTargetAppType;
    gLayerUnchanged = isSameLayer({layerName, keyA, keyB},
                                  {gCurrentLayer, gCurrentLayerKeyA, gCurrentLayerKeyB});
    if (gLayerUnchanged) return;
    gCurrentLayer = std::move(layerName);
    gCurrentLayerKeyA = keyA;
    gCurrentLayerKeyB = keyB;
    gMode = kModeUnclassified;
}

void brevoldBufferMonitor(int lastMaxQueuedFrames, std::string peerLayerName, std::string layerName,
                          int64_t diffSFToQB, int64_t diffQB, int64_t sfTime, int64_t /*reserved*/,
                          int64_t refreshPeriod) {
    setVsyncPeriodWithoutLock(refreshPeriod);
    if (gScalingEnabled && isTargetAppWithoutLock() && peerLayerName == layerName &&
        gLastFrameStamp != 0 && lastMaxQueuedFrames >= 1) {
        const int32_t mode = modeWithoutLock();
        const RefreshBand* const band = refreshBandOf(refreshPeriod);
        if (band != nullptr && band->mode == mode) {
            const FrameTiming frame = {mode, lastMaxQueuedFrames, diffSFToQB, diffQB,
                                       frameBudgetOf(refreshPeriod)};
            if (lastMaxQueuedFrames >= kMinDepthForDown) {
                scaleDown(frame);
            } else {
                scaleUp(frame);
            }
        }
    }
    gLastFrameStamp = sfTime;
}

void checkRefreshRateChange(void* info) {
    if (info == nullptr) return;
    const RefreshBand* const band =
            refreshBandOf(static_cast<const LayerFrameInfo*>(info)->refreshPeriod);
    if (band == nullptr) return;
    if (gRefreshRate == band->rateHz && gRefreshRateHandle > 0) return;
    gRefreshRate = band->rateHz;
    if (gRefreshRateHandle >= 1 && gPerfLockRel != nullptr) {
        gPerfLockRel(gRefreshRateHandle);
        gRefreshRateHandle = 0;
    }
    if (gPerfHintUpdate != nullptr) {
        gRefreshRateHandle =
                gPerfHintUpdate(kRefreshRateHint, nullptr, kRefreshRateDuration, gRefreshRate);
    }
}

void modeMonitor(int64_t intervalNs) {
    const nsecs_t nowNs = systemTime(SYSTEM_TIME_MONOTONIC);
    if (isIdleGap(intervalNs)) {
        resetWindow();
        // If locking fails, here and below, the mode is stored all the same.
        Mutex::Autolock lock(gLock);
        gMode = kModeUnclassified;
        return;
    }
    int32_t count = 1;
    if (gFpsWindowActive) {
        count = checkedAdd(gFrameCount, 1);
    } else {
        if (intervalNs < 1 || gFrameCount != 0) return;
        gFpsWindowActive = true;
        gWindowStart = nowNs;
    }
    gIntervalSum += static_cast<float>(intervalNs);
    gFrameCount = count;
    if (checkedSub(nowNs, gWindowStart) <= kWindowNs) return;

    gFps = 1.0f / ((gIntervalSum / static_cast<float>(count)) / 1000000000.0f);
    {
        Mutex::Autolock lock(gLock);
        gMode = modeOf(gFps);
    }
    reportWindow();
    resetWindow();
}

}  // namespace android

using namespace android;

int brevoldOnFrameAvailable(LayerFrameInfo* info) {
    if (gFpsSwitchEnabled != 0) checkRefreshRateChange(info);
    if (info == nullptr) return 0;
    if (!gScalingEnabled && !gJr10Enabled) return 0;

    // Copy the record first; it may change during the service call.
    const bool skip = info->skipLayerCheck != 0;
    const int32_t keyB = info->layerKeyB;
    const int32_t keyA = info->layerKeyA;
    const int32_t lastMaxQueuedFrames = info->lastMaxQueuedFrames;
    std::string peerLayerName = info->peerLayerName;
    std::string layerName = info->layerName;
    const int64_t qbTime = info->qbTime;
    const int64_t lastQbTime = info->lastQbTime;
    const int64_t sfTime = info->sfTime;
    const int64_t refreshPeriod = info->refreshPeriod;

    if (!skip) brevoldAppTypeCheck(layerName);
    brevoldLayerStatusCheck(skip, layerName, keyA, keyB);

    // Extreme stamps abort even if the monitor is not called below.
    const int64_t diffSFToQB = checkedSub(qbTime, sfTime);
    const int64_t diffQB = checkedSub(qbTime, lastQbTime);
    if (lastQbTime != -1) {
        brevoldBufferMonitor(lastMaxQueuedFrames, std::move(peerLayerName), std::move(layerName),
                             diffSFToQB, diffQB, sfTime, 0, refreshPeriod);
    }
    return 0;
}

int brevoldMonitor(int queuedFrames, int64_t periodNs) {
    const nsecs_t nowNs = systemTime(SYSTEM_TIME_MONOTONIC);
    const ScopedLock lock(gLock);
    const bool verdict = isBoostVerdict(queuedFrames, periodNs, nowNs);
    gPrevQueueBusy = queuedFrames >= 2;
    return verdict ? 1 : 0;
}

int brevoldScaling(int queuedFrames, int suppress) {
    ScopedLock lock(gLock);
    postJankBoostIfDue(queuedFrames, suppress);
    return lock.unlock();
}

void brevoldRefresh() {
    if (!gScalingEnabled && !gJr10Enabled) return;
    const nsecs_t nowNs = systemTime(SYSTEM_TIME_MONOTONIC);
    if (gLastRefreshTime != 0) modeMonitor(checkedSub(nowNs, gLastRefreshTime));
    setLastRefreshTimeWithoutLock(nowNs);
    if (gScalingEnabled) gSFThread->withdrawBoost();
}
