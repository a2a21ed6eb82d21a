#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>

namespace brevold::verify {

/** The reason for a difference between a recording and its replay, in the order of the tests. */
enum class Cause : uint8_t {
    OtherVersion,          // the library decides differently from the same figures
    OtherLayer,            // another layer has the focus, or the application is not a target
    OtherPeer,             // peerLayerName is not the layer's name
    NotReported,           // the frame, or one before it, is not reported
    ReportedTwice,         // the frame is reported twice
    DepthPlusOne,          // the queue depth is one too high
    DepthMinusOne,         // the queue depth is one too low
    DepthBeforeLatch,      // the queue depth is counted without the latest latch
    DepthAfterLatch,       // the queue depth is counted with the next latch
    DepthOther,            // the queue depth is counted in another way
    StampVsync,            // the stamp is that of the latest vsync
    StampPrevious,         // the stamp is that of the composition before the latest
    StampZero,             // the stamp is 0
    StampOther,            // the stamp is another time
    PeriodInNoBand,        // the refresh period is in none of the library's bands
    PeriodOfOtherDisplay,  // the refresh period is that of another display
    WindowStart,           // the measuring windows begin at other times
    TickRate,              // brevoldRefresh is not called once per composition
    BoostDepthLeft,        // brevoldScaling gets the depth at the call
    BoostDepthFound,       // brevoldScaling gets the maximum depth since the previous call
    BoostDepthOther,       // brevoldScaling gets another depth
    DownOff,               // DOWN requests are on in the profile, but off on the device
    DownOn,                // DOWN requests are off in the profile, but on on the device
    RequestLate,       // the worker sends a request more than a refresh period after the decision
    RequestNotSent,    // the worker does not send a request
    RequestUndecided,  // the worker sends a request without a decision in the trace
    BoostLate,         // the worker sends a boost after a later composition
    BoostNotSent,      // the worker does not send a boost
    BoostNotReleased,  // the boost is not released before the next one
    QueueTimes,        // the queue times are not those of the trace
    Unexplained,
};

constexpr size_t kCauseCount = static_cast<size_t>(Cause::Unexplained) + 1;

/** Causes that a recording cannot tell apart. */
class CauseSet {
  public:
    CauseSet() = default;
    CauseSet(Cause cause) { add(cause); }

    void add(Cause cause) { mCauses.set(static_cast<size_t>(cause)); }
    void add(const CauseSet& causes) { mCauses |= causes.mCauses; }
    bool contains(Cause cause) const { return mCauses.test(static_cast<size_t>(cause)); }
    bool isEmpty() const { return mCauses.none(); }
    bool operator==(const CauseSet& other) const { return mCauses == other.mCauses; }
    bool operator!=(const CauseSet& other) const { return mCauses != other.mCauses; }
    bool isSubsetOf(const CauseSet& other) const { return (mCauses & ~other.mCauses).none(); }

    /** Calls visit(Cause) for each cause, in the order of the enum. */
    template <typename Visit>
    void forEach(Visit visit) const {
        for (size_t i = 0; i < kCauseCount; ++i) {
            if (mCauses.test(i)) visit(static_cast<Cause>(i));
        }
    }

  private:
    std::bitset<kCauseCount> mCauses;
};

}  // namespace brevold::verify
