#include <utils/Timers.h>

#include <regex>
#include <string>

#include "brevold/brevold.h"
#include "brevold/frame_rate.h"
#include "brevold/layer_name.h"
#include "brevold/platform.h"
#include "brevold/protocol.h"
#include "brevold/state.h"

namespace android {

namespace {

constexpr int64_t kPeriodMarginNs = 1000000;
constexpr int64_t kWindowNs = 1000000000;
constexpr int64_t kVerdictSpanNs = 17999999;

// Fixed-width gaps keep the values apart in a trace viewer.
#define BREVOLD_GAP45 "                                             "
#define BREVOLD_GAP53 BREVOLD_GAP45 "        "
#define BREVOLD_SCALING_LABEL(direction)                           \
    "[" direction "_SCALING]mode \t%d \tscale \t%f" BREVOLD_GAP53  \
    "\theadRoom \t%lld \tdiffQB \t%lld \tdiffSFToQB" BREVOLD_GAP53 \
    "\t%lld"                                                       \
    " \tlastMaxQueuedFrames \t%d"

using LongLong = long long;

/** The stamps of one frame report that headroom is worked out from, in nanoseconds. */
struct FrameTiming {
    int32_t mode;
    int32_t queuedFrames;
    int64_t diffSFToQB;
    int64_t diffQB;
    int64_t frameBudgetNs;
};

float ratio(int64_t dividend, int64_t divisor) {
    return static_cast<float>(dividend) / static_cast<float>(divisor);
}

void scaleDown(const FrameTiming& frame) {
    const int64_t headRoom = checkedSub(frame.frameBudgetNs * frame.queuedFrames, frame.diffSFToQB);
    const float quotient = ratio(frame.diffQB, headRoom);
    const float scale = quotient > 1.0f ? 1.0f : quotient;  // an undefined quotient stays one
    TraceSection(gDebug, BREVOLD_SCALING_LABEL("DOWN"), frame.mode, static_cast<double>(scale),
                 LongLong{headRoom}, LongLong{frame.diffQB}, LongLong{frame.diffSFToQB},
                 frame.queuedFrames);
    if (!gPfarDownEnabled) return;
    energyScaling(scale, kDirectionDown, kNoBoost, kQbChannel);
    gDownCount = checkedAdd(gDownCount, 1);
}

void scaleUp(const FrameTiming& frame) {
    const int64_t headRoom = checkedSub(frame.frameBudgetNs, frame.diffSFToQB);
    const float scale = ratio(frame.diffQB, checkedAdd(headRoom, frame.frameBudgetNs));
    if (!(scale > 1.0f)) return;
    TraceSection(gDebug, BREVOLD_SCALING_LABEL("UP"), frame.mode, static_cast<double>(scale),
                 LongLong{headRoom}, LongLong{frame.diffQB}, LongLong{frame.diffSFToQB},
                 frame.queuedFrames);
    energyScaling(scale, kDirectionUp, kBoost, kQbChannel);
    gUpCount = checkedAdd(gUpCount, 1);
}

/** The mode of a measured frame rate; the gaps between the bands stay unclassified. */
int32_t modeOf(float fps) {
    struct ModeBand {
        float above;
        float below;
        int32_t mode;
    };
    constexpr ModeBand kModeBands[] = {
            {27.0f, 32.0f, 1}, {47.0f, 62.0f, 2}, {77.0f, 92.0f, 3}, {107.0f, 122.0f, 4}};
    if (fps > 0.0f && fps <= 27.0f) return 0;
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

/** The verdict of brevoldMonitor, its conditions in the order in which they are tested. */
bool isBoostVerdict(int queuedFrames, int64_t periodNs, int64_t nowNs) REQUIRES(gLock) {
    if (!gJr10Enabled || !gTargetApp || !gLayerUnchanged) return false;
    const RefreshBand* const band = refreshBandOf(periodNs);
    if (band == nullptr || band->rateHz != 60) return false;
    if (static_cast<uint32_t>(gMode) > 1 || gLastRefreshTime == 0) return false;
    if (queuedFrames >= 2 && gPrevQueueBusy) return false;
    const int64_t sinceRefreshNs = checkedSub(nowNs, gLastRefreshTime);
    return sinceRefreshNs >= 1 && sinceRefreshNs <= kVerdictSpanNs;
}

/** Whether frames pile up at a steady rate: a mode with its own period, or mode 1 at 60 Hz. */
bool isJankBoostDue(int queuedFrames) {
    const RefreshBand* const band = refreshBandOf(gVsyncPeriod);
    if (band == nullptr) return false;
    if (band->mode == gMode) return queuedFrames >= 2;
    return gMode == 1 && band->rateHz == 60 && (gSmoothMotion || gJr10Enabled) && queuedFrames >= 3;
}

void postJankBoostWhenDue(int queuedFrames, int suppress) REQUIRES(gLock) {
    if (!gScalingEnabled || !gTargetApp) return;
    if (!isJankBoostDue(queuedFrames) || suppress != 0) return;
    energyScaling(kJankBoostScale, kDirectionUp, kBoost, kSfChannel);
    gIdleCount = checkedAdd(gIdleCount, 1);
}

}  // namespace

std::string getPackageName(const std::string& layerName) {
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
    lockOrAbort(gLock);
    if (!isListedLayer(layerName) && !skip) {
        gTargetApp = gAppType == kTargetAppType;
        if (layerName == gCurrentLayer && keyA == gCurrentLayerKeyA && keyB == gCurrentLayerKeyB) {
            gLayerUnchanged = true;
        } else {
            gCurrentLayer = std::move(layerName);
            gCurrentLayerKeyA = keyA;
            gCurrentLayerKeyB = keyB;
            gLayerUnchanged = false;
            gMode = kModeUnclassified;
        }
    }
    gLock.unlock();
}

void brevoldBufferMonitor(int lastMaxQueuedFrames, std::string peerLayerName, std::string layerName,
                          int64_t diffSFToQB, int64_t diffQB, int64_t sfTime, int64_t /*reserved*/,
                          int64_t refreshPeriod) {
    gVsyncPeriod = refreshPeriod;
    if (gScalingEnabled && gTargetApp && peerLayerName == layerName && gLastFrameStamp != 0 &&
        lastMaxQueuedFrames >= 1) {
        const int32_t mode = gMode;
        const RefreshBand* const band = refreshBandOf(refreshPeriod);
        if (band != nullptr && band->mode == mode) {
            const FrameTiming frame = {mode, lastMaxQueuedFrames, diffSFToQB, diffQB,
                                       refreshPeriod - kPeriodMarginNs};
            if (lastMaxQueuedFrames >= 2) {
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
        gRefreshRateHandle = gPerfHintUpdate(kRefreshRateHint, nullptr, 0, gRefreshRate);
    }
}

void modeMonitor(int64_t intervalNs) {
    const nsecs_t nowNs = systemTime(SYSTEM_TIME_MONOTONIC);
    if (intervalNs >= kIdleGapNs) {
        resetWindow();
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
    TraceSection(gDebug,
                 "[FM]gMode:%d \tFPS:\t%.2F \tDown:\t%d \tUp:\t%d" BREVOLD_GAP45 "\tIdle:\t%d",
                 gMode, static_cast<double>(gFps), gDownCount, gUpCount, gIdleCount);
    if (gDebug) {
        BREVOLD_LOGE("[FM]gMode:%d \tFPS:\t%.2F \tDown:\t%d \tUp:\t%d \tIdle:\t%d", gMode,
                     static_cast<double>(gFps), gDownCount, gUpCount, gIdleCount);
    }
    resetWindow();
}

}  // namespace android

using namespace android;

int brevoldOnFrameAvailable(LayerFrameInfo* info) {
    if (gFpsSwitchEnabled != 0) checkRefreshRateChange(info);
    if (info == nullptr) return 0;
    if (!gScalingEnabled && !gJr10Enabled) return 0;

    // All of the record is read before the service is asked: what it holds by then counts.
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

    // Extreme stamps overflow, and abort, also where the monitor is not called below.
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
    lockOrAbort(gLock);
    const bool verdict = isBoostVerdict(queuedFrames, periodNs, nowNs);
    gPrevQueueBusy = queuedFrames >= 2;
    gLock.unlock();
    return verdict ? 1 : 0;
}

int brevoldScaling(int queuedFrames, int suppress) {
    lockOrAbort(gLock);
    postJankBoostWhenDue(queuedFrames, suppress);
    return unlockWithStatus(gLock);
}

void brevoldRefresh() {
    if (!gScalingEnabled && !gJr10Enabled) return;
    const nsecs_t nowNs = systemTime(SYSTEM_TIME_MONOTONIC);
    if (gLastRefreshTime != 0) modeMonitor(checkedSub(nowNs, gLastRefreshTime));
    gLastRefreshTime = nowNs;
    if (gScalingEnabled) gSFThread->withdrawBoost();
}
