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
 * Sends scaling requests to the performance service, away from the compositor's threads. One
 * request at a time: a newer one overwrites one that is not yet sent.
 *
 * "QB" forwards the request at every wake-up. "SF" turns its request into one boost and one
 * release, by (mBoostPending, mBoosted):
 *
 *   (false, any)   wake-up          release hint; the count restarts      -> (false, false)
 *   (true, false)  wake-up          boost hint                            -> (true, true)
 *   (true, true)   wake-up          nothing
 *   (any, false)   boost request    count + 1                             -> (true, false)
 *   (any, true)    boost request    count + 1
 *   (true, any)    withdrawBoost()  wake-up                               -> (false, unchanged)
 *
 * The thread runs to the end of the process, or until waiting fails. It is never joined.
 */
class ScalingSyncThread : public Thread {
  public:
    /**
     * @param handle of the client library; null leaves a worker that only logs.
     * @param channel "SF" or "QB"; a worker of any other name sends nothing.
     */
    ScalingSyncThread(void* handle, std::string channel, bool debug);

    /** Overwrites the request and wakes the worker. Blocks while a hint is being sent. */
    void post(float scale, uint32_t direction, uint32_t boostLevel, int32_t duration);

    /** Clears a pending boost and wakes the worker for the release. Blocks as post() does. */
    void withdrawBoost();

  private:
    bool threadLoop() override;

    bool canSend() const REQUIRES(mLock);
    uint32_t typeWord() const REQUIRES(mLock);
    void sendScaling() REQUIRES(mLock);
    void sendBoostOrRelease() REQUIRES(mLock);

    const std::string mChannel;
    Mutex mLock;
    Condition mCondition;
    float mScale GUARDED_BY(mLock) = 0.0f;
    uint32_t mDirection GUARDED_BY(mLock) = 0;
    uint32_t mBoostLevel GUARDED_BY(mLock) = 0;
    bool mBoostPending GUARDED_BY(mLock) = false;
    bool mBoosted GUARDED_BY(mLock) = false;
    const bool mDebug;
    /** Boost requests since the last release. */
    int32_t mBoostCount GUARDED_BY(mLock) = 0;
    /** Below 1, as before any request, nothing is sent. */
    int32_t mDuration GUARDED_BY(mLock) = kNoDuration;
    PerfHintFn mPerfHint = nullptr;
};

}  // namespace android
