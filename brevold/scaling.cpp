#include <dlfcn.h>

#include <cstring>

#include "brevold/brevold.h"
#include "brevold/platform.h"
#include "brevold/protocol.h"
#include "brevold/scaling_sync_thread.h"
#include "brevold/state.h"

namespace android {

namespace {

// A macro, as each message is one literal.
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
    if (boostLevel != 0) {
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
    mLock.lock();
    while (true) {
        const status_t status = mCondition.wait(mLock);
        if (status != OK) {
            BREVOLD_LOGE("error waiting for new events: %s (%d)", strerror(-status), status);
            mLock.unlock();
            return false;
        }
        if (mChannel == kQbChannelName) {
            sendScaling();
        } else if (mChannel == kSfChannelName) {
            sendBoostOrRelease();
        }
        mLock.unlock();
        mLock.lock();
    }
}

bool ScalingSyncThread::canSend() const {
    if (mPerfHint != nullptr && mDuration >= 1) return true;
    BREVOLD_LOGE("mPerfHint is null.");
    return false;
}

uint32_t ScalingSyncThread::typeWord() const {
    return packTypeWord(mScale, mDirection, mBoostLevel);
}

void ScalingSyncThread::sendScaling() {
    if (!canSend()) return;
    const TraceSection section(mDebug, "energyScaling[Scale:%.2F]", static_cast<double>(mScale));
    mPerfHint(kScalingHint, nullptr, mDuration, static_cast<int>(typeWord() | kQbChannelBit));
}

void ScalingSyncThread::sendBoostOrRelease() {
    if (!canSend()) return;
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
    if (direction == 0 || !gScalingEnabled) return;
    if (channel == kSfChannel) {
        gSFThread->post(scale, direction, boostLevel, kSfDuration);
    } else if (channel == kQbChannel) {
        gQBThread->post(scale, direction, boostLevel, qbDurationOf(gMode));
    }
}

void releaseScaling() {
    gSFThread->withdrawBoost();
}

}  // namespace android
