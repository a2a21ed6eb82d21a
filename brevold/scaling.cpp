#include <dlfcn.h>

#include <cstring>

#include "brevold/brevold.h"
#include "brevold/platform.h"
#include "brevold/protocol.h"
#include "brevold/scaling_sync_thread.h"
#include "brevold/state.h"

namespace android {

namespace {

// A macro, because the variable's name is part of the message.
#define BREVOLD_BIND(function, handle, symbol)                                  \
    do {                                                                        \
        function = reinterpret_cast<decltype(function)>(dlsym(handle, symbol)); \
        if (function == nullptr) {                                              \
            BREVOLD_LOGE("Unable to get " #function " function handle.\n");     \
        }                                                                       \
    } while (false)

void* openPerfClient() {
    void* const handle = dlopen(kPerfClientLibrary, RTLD_NOW);
    if (handle == nullptr) {
        BREVOLD_LOGE("Unable to open %s: %s\n.", kPerfClientLibrary, dlerror());
    }
    return handle;
}

}  // namespace

void* getOptHandle() {
    return openPerfClient();
}

void* initPerfLock() {
    void* const handle = openPerfClient();
    if (handle == nullptr) {
        BREVOLD_LOGE("Failed to get hwopt handle.\n");
        return nullptr;
    }
    BREVOLD_BIND(gPerfGetFeedback, handle, "perf_get_feedback");
    BREVOLD_BIND(gPerfGetProp, handle, "perf_get_prop");
    BREVOLD_BIND(gPerfHintUpdate, handle, "perf_hint");
    BREVOLD_BIND(gPerfLockRel, handle, "perf_lock_rel");
    return handle;
}

ScalingSyncThread::ScalingSyncThread(void* handle, std::string channel, bool debug)
      : Thread(true), mChannel(std::move(channel)), mDebug(debug) {
    if (handle == nullptr) {
        BREVOLD_LOGE("Failed to get hwopt handle.\n");
        return;
    }
    BREVOLD_BIND(mPerfHint, handle, "perf_hint");
}

void ScalingSyncThread::post(float scale, uint32_t direction, uint32_t boostLevel,
                             int32_t duration) {
    Mutex::Autolock lock(mLock);
    mScale = scale;
    mDirection = direction;
    mBoostLevel = boostLevel;
    mDuration = duration;
    if (boostLevel != kNoBoost) {
        mBoostCount = checkedAdd(mBoostCount, 1);
        if (!mBoosted) mBoostPending = true;
    }
    mCondition.signal();
}

void ScalingSyncThread::withdrawBoost() {
    Mutex::Autolock lock(mLock);
    if (!mBoostPending) return;
    mBoostPending = false;
    mCondition.signal();
}

bool ScalingSyncThread::threadLoop() {
    // Returning true would repeat the call too, but only after the platform took its own locks.
    while (waitAndSend()) {
    }
    return false;
}

bool ScalingSyncThread::waitAndSend() {
    // Between two passes the lock is free for a moment; a signal sent then is lost.
    Mutex::Autolock lock(mLock);
    const status_t status = mCondition.wait(mLock);
    if (status != OK) {
        BREVOLD_LOGE("error waiting for new events: %s (%d)", strerror(-status), status);
        return false;
    }
    send();
    return true;
}

void ScalingSyncThread::send() {
    const bool isQb = mChannel == kQbChannelName;
    if (!isQb && mChannel != kSfChannelName) return;
    if (!canSend()) {
        BREVOLD_LOGE("mPerfHint is null.");
    } else if (isQb) {
        sendScaling();
    } else {
        sendBoostOrRelease();
    }
}

bool ScalingSyncThread::canSend() const {
    return mPerfHint != nullptr && mDuration >= 1;
}

uint32_t ScalingSyncThread::typeWord() const {
    return packTypeWord(mScale, mDirection, mBoostLevel);
}

void ScalingSyncThread::sendScaling() {
    const TraceSection section(mDebug, "energyScaling[Scale:%.2F]", static_cast<double>(mScale));
    mPerfHint(kScalingHint, nullptr, mDuration, static_cast<int>(typeWord() | kQbChannelBit));
}

void ScalingSyncThread::sendBoostOrRelease() {
    if (!mBoostPending) {
        {
            const TraceSection section(mDebug, "energyScaling[jank]-rel");
            mPerfHint(kScalingHint, nullptr, kReleaseDuration, mBoostCount);
        }
        mBoosted = false;
        mBoostCount = 0;
    } else if (!mBoosted) {
        {
            const TraceSection section(mDebug, "energyScaling[jank]");
            mPerfHint(kScalingHint, nullptr, mDuration, static_cast<int>(typeWord()));
        }
        mBoosted = true;
    }
}

void energyScaling(float scale, unsigned int direction, unsigned int boostLevel, int channel) {
    if (direction == kNoDirection || !gScalingEnabled) return;
    if (channel == kSfChannel) {
        gSFThread->post(scale, direction, boostLevel, kSfDuration);
    } else if (channel == kQbChannel) {
        gQBThread->post(scale, direction, boostLevel, qbDurationOf(modeWithoutLock()));
    }
}

void releaseScaling() {
    gSFThread->withdrawBoost();
}

}  // namespace android
