#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>

namespace brevold::verify {

/** The reason for a difference between a recording and its replay, in the order of the tests. */
enum class Cause : uint8_t {
    OtherVersion,  // the library decides differently from the same figures
    OtherLayer,    // another layer has the focus, or the application is no target
    OtherPeer,     // peerLayerName is not the layer's name
    NotReported,   // the frame, or one before it
    ReportedTwice,
    // The queue depth is counted
    DepthPlusOne,      // one too high
    DepthMinusOne,     // one too low
    DepthBeforeLatch,  // without the latest latch
    DepthAfterLatch,   // with the next latch
    DepthOther,        // in another way
    // The stamp is not the beginning of the latest composition, but
    StampVsync,     // the latest vsync
    StampPrevious,  // the beginning of the composition before
    StampZero,      // 0
    StampOther,     // another time
    // The refresh period
    PeriodInNoBand,
    PeriodOfOtherDisplay,
    // The frame-rate mode
    WindowStart,  // the measuring windows begin at other times
    TickRate,     // brevoldRefresh is called at another rate than compositions begin
    // The depth that brevoldScaling gets
    BoostDepthLeft,   // is that at the call
    BoostDepthFound,  // is the maximum since the previous call
    BoostDepthOther,
    // The workers
    DownOff,           // DOWN requests are off on the device
    DownOn,            // or on, but off in the profile
    RequestLate,       // the worker sends a request more than a refresh period later
    RequestNotSent,    // or never
    BoostNotReleased,  // before the next boost
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
