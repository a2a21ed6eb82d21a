#pragma once

#include <cstddef>
#include <cstdint>

#include "brevold/protocol.h"

namespace brevold::test {

// The library's workers, indexed as their channels.
constexpr size_t kSf = android::kSfChannel, kQb = android::kQbChannel, kWorkers = 2;

// A call by the compositor threads in `callers`, a bit each. If it takes a worker's lock, it posts
// a request to that worker or withdraws one.
struct Call {
    const char* name;
    uint32_t callers;
    void (*run)();
    size_t worker = kSf;
    uint32_t word = 0;  // type word of the request; 0 if the call withdraws
};

// Works out the hint that is due at each wake-up of a worker, and compares it with the hint sent.
// Requests take effect in the order in which the compositor threads hold the worker's lock. The
// functions return the rule that is violated, or null.
class Rules {
  public:
    // A compositor thread releases a worker's lock. `isAsleep` is true if the worker waits and has
    // not been signalled.
    const char* changeRequest(const Call& call, bool isAsleep) {
        const bool needsSignal = call.word != 0 || mIsPending;
        if (call.word == 0) {
            mIsPending = false;
        } else {
            mWords[call.worker] = call.word;
            if (call.worker == kSf) {
                ++mBoosts;
                mIsPending |= !mIsSent;
            }
        }
        return needsSignal && isAsleep ? "a waiting worker is not signalled" : nullptr;
    }

    // The worker has its lock again after a wait.
    void wakeUp(size_t worker) {
        mDue[worker] = worker == kSf && mIsSent ? Due::Nothing : Due::Request;
        if (worker == kSf && !mIsPending) mDue[kSf] = Due::Release;
    }

    const char* sendHint(size_t worker, int duration, uint32_t word) {
        if (mWords[worker] == 0) return "a hint is sent before a post";
        const Due due = mDue[worker];
        mDue[worker] = Due::Nothing;
        if (due != (duration == android::kReleaseDuration ? Due::Release : Due::Request)) {
            return "a hint that is not due is sent";
        }
        if (worker == kSf) mIsSent = due == Due::Request;
        if (due == Due::Request) {
            return word == mWords[worker] ? nullptr : "a hint does not carry the newest request";
        }
        const bool isCount = word == mBoosts;
        mBoosts = 0;
        return isCount ? nullptr : "a release does not count the boost requests";
    }

    // The "QB" worker drops a request that was posted without a frame-rate mode.
    void dropRequest() { mDue[kQb] = Due::Nothing; }

    // The worker releases its lock.
    const char* endPass(size_t worker) const {
        if (mDue[worker] == Due::Nothing) return nullptr;
        return mDue[worker] == Due::Release ? "a boost is not released" : "a request is not sent";
    }

  private:
    enum class Due : uint8_t { Nothing, Request, Release };

    Due mDue[kWorkers] = {};
    bool mIsPending = false;         // a boost was requested and not withdrawn
    bool mIsSent = false;            // a boost was sent and not released
    uint32_t mBoosts = 0;            // boost requests since the last release
    uint32_t mWords[kWorkers] = {};  // of the newest request
};

}  // namespace brevold::test
