#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_set>

#include "trace/activity.h"
#include "trace/clock_offsets.h"
#include "trace/mark_list.h"

namespace brevold::trace {

/** Collects the events in the ftrace bundles of a Perfetto trace. */
class FtraceBundles {
  public:
    /** Unless `activity` is null, the events of the scheduler are added to it. */
    explicit FtraceBundles(Activity* activity = nullptr) : mActivity(activity) {}

    /**
     * Takes the message FtraceEventBundle. Throws protozero::exception if it is damaged; the events
     * before the damage are kept.
     */
    void add(std::string_view bundle, const ClockOffsets& clocks);

    /** The marks among the events. A bundle is of one processor, so add all bundles before. */
    MarkList& marks() { return mMarks; }

    int64_t events() const { return mEvents; }
    /** Boot times of the first and the last event, whatever its kind; 0 without events. */
    int64_t startNs() const { return mStartNs; }
    int64_t endNs() const { return mEndNs; }

    /** Threads of the marks. */
    const std::unordered_set<int32_t>& threads() const { return mThreads; }

    /** Bundles before which the recorder lost events. */
    int64_t lossyBundles() const { return mLossyBundles; }
    /** Bundles whose clock the trace does not relate to boot time; their times are taken as is. */
    int64_t unknownClocks() const { return mUnknownClocks; }
    /** Events skipped because one before them in their bundle is more than 1 ms later. */
    int64_t outOfOrderEvents() const { return mOutOfOrderEvents; }
    /** Counters skipped because their value is not a number. */
    int64_t badCounters() const { return mBadCounters; }

  private:
    struct Header;

    uint64_t offsetOf(const Header& header, const ClockOffsets& clocks);
    void addEvent(std::string_view event, uint64_t offsetNs, int64_t* lastNs);
    void addPrint(std::string_view print, int64_t timeNs, int32_t tid);
    void noteThread(int32_t tid);

    Activity* const mActivity;
    MarkList mMarks;
    int64_t mEvents = 0;
    int64_t mStartNs = 0;
    int64_t mEndNs = 0;
    int32_t mLastThread = -1;
    std::unordered_set<int32_t> mThreads;
    int64_t mLossyBundles = 0;
    int64_t mUnknownClocks = 0;
    int64_t mOutOfOrderEvents = 0;
    int64_t mBadCounters = 0;
};

}  // namespace brevold::trace
