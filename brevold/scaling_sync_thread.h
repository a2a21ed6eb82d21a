#pragma once

#include <utils/Condition.h>
#include <utils/Mutex.h>
#include <utils/Thread.h>

#include <cstdint>
#include <string>

#include "brevold/perf_client.h"
#include "brevold/protocol.h"

namespace android {

/**
 * Sends scaling requests to the performance service on a thread of its own. It holds one request: a
 * new request replaces one that has not been sent yet.
 *
 * "QB" sends the request at every wake-up. "SF" turns its requests into one boost and one release,
 * depending on (mBoostPending, mBoosted):
 *
 *   (false, any)   wake-up          sends the release, resets the count   -> (false, false)
 *   (true, false)  wake-up          sends the boost                       -> (true, true)
 *   (true, true)   wake-up          nothing
 *   (any, false)   boost request    count + 1                             -> (true, false)
 *   (any, true)    boost request    count + 1
 *   (true, any)    withdrawBoost()  wake-up                               -> (false, unchanged)
 *
 * The thread runs until the process ends or a wait fails. Nothing joins it.
 */
class ScalingSyncThread : public Thread {
  public:
    /**
     * @param handle of the client library; if null, the worker only logs.
     * @param channel "SF" or "QB"; a worker with any other name sends nothing.
     */
    ScalingSyncThread(void* handle, std::string channel, bool debug);

    /** Replaces the request and wakes the worker. Blocks while the worker sends a hint. */
    void post(float scale, uint32_t direction, uint32_t boostLevel, int32_t duration);

    /** Clears a pending boost and wakes the worker for the release. Blocks like post(). */
    void withdrawBoost();

  private:
    bool threadLoop() override;

    /** Waits for a wake-up and sends what is due. Returns false if waiting failed. */
    bool waitAndSend();

    bool canSend() const REQUIRES(mLock);
    uint32_t typeWord() const REQUIRES(mLock);
    void send() REQUIRES(mLock);
    void sendScaling() REQUIRES(mLock);
    void sendBoostOrRelease() REQUIRES(mLock);

    const std::string mChannel;
    /** Always locked with Autolock: a failure is ignored and the call continues. */
    Mutex mLock;
    Condition mCondition;
    float mScale GUARDED_BY(mLock) = 0.0f;
    uint32_t mDirection GUARDED_BY(mLock) = kNoDirection;
    uint32_t mBoostLevel GUARDED_BY(mLock) = kNoBoost;
    bool mBoostPending GUARDED_BY(mLock) = false;
    bool mBoosted GUARDED_BY(mLock) = false;
    const bool mDebug;
    /** Boost requests since the last release. */
    int32_t mBoostCount GUARDED_BY(mLock) = 0;
    /** Nothing is sent if it is below 1, as it is before the first request. */
    int32_t mDuration GUARDED_BY(mLock) = kNoDuration;
    /** Written by the constructor only. */
    PerfHintFn mPerfHint = nullptr;
};

}  // namespace android
