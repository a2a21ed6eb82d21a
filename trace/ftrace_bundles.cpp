#include "trace/ftrace_bundles.h"

#include <algorithm>
#include <optional>
#include <protozero/pbf_message.hpp>

#include "base/text.h"
#include "base/time_units.h"
#include "trace/mark_payload.h"
#include "trace/mark_reader.h"
#include "trace/perfetto_fields.h"
#include "trace/scheduler_events.h"

namespace brevold::trace {
namespace {

using perfetto::FtraceEvent;
using perfetto::FtraceEventBundle;
using protozero::pbf_message;

}  // namespace

struct FtraceBundles::Header {
    bool hasLostEvents = false;
    uint32_t clock = perfetto::kFtraceClockBoot;
    std::optional<uint64_t> clockNs;
    std::optional<uint64_t> bootNs;
};

void FtraceBundles::add(std::string_view bundle, const ClockOffsets& clocks) {
    // The clock may follow the events.
    Header header;
    pbf_message<FtraceEventBundle> fields(bundle);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case varint(FtraceEventBundle::LostEvents):
                header.hasLostEvents = fields.get_bool();
                break;
            case varint(FtraceEventBundle::FtraceClock):
                header.clock = fields.get_uint32();
                break;
            case varint(FtraceEventBundle::FtraceTimestamp):
                header.clockNs = fields.get_uint64();
                break;
            case varint(FtraceEventBundle::BootTimestamp):
                header.bootNs = fields.get_uint64();
                break;
            default:
                fields.skip();
        }
    }
    if (header.hasLostEvents) ++mLossyBundles;

    const uint64_t offsetNs = offsetOf(header, clocks);
    int64_t lastNs = 0;
    fields = pbf_message<FtraceEventBundle>(bundle);
    while (fields.next(FtraceEventBundle::Event, protozero::pbf_wire_type::length_delimited))
        addEvent(fields.get_view(), offsetNs, &lastNs);
    mMarks.endRun();
    if (mActivity != nullptr) addSchedulerEvents(bundle, offsetNs, mActivity);
}

uint64_t FtraceBundles::offsetOf(const Header& header, const ClockOffsets& clocks) {
    if (header.clock == perfetto::kFtraceClockBoot) return 0;
    if (header.clockNs && header.bootNs) return *header.bootNs - *header.clockNs;
    if (header.clock == perfetto::kFtraceClockMonotonicRaw) {
        const std::optional<int64_t> offsetNs = clocks.offsetToBootNs(perfetto::kMonotonicRawClock);
        if (offsetNs) return static_cast<uint64_t>(*offsetNs);
    }
    ++mUnknownClocks;
    return 0;
}

void FtraceBundles::addEvent(std::string_view event, uint64_t offsetNs, int64_t* lastNs) {
    uint64_t clockNs = 0;
    int32_t tid = 0;
    std::string_view print;
    pbf_message<FtraceEvent> fields(event);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case varint(FtraceEvent::Timestamp):
                clockNs = fields.get_uint64();
                break;
            case varint(FtraceEvent::Pid):
                tid = fields.get_int32();
                break;
            case bytes(FtraceEvent::Print):
                print = fields.get_view();
                break;
            default:
                fields.skip();
        }
    }
    const uint64_t bootNs = clockNs + offsetNs;
    // Recorders may close a trace with an event that has no time.
    if (clockNs == 0 || bootNs > static_cast<uint64_t>(kMaxTimeNs)) return;
    const auto timeNs = static_cast<int64_t>(bootNs);
    if (timeNs < *lastNs - kMaxDisorderNs) {
        ++mOutOfOrderEvents;
        return;
    }
    *lastNs = std::max(*lastNs, timeNs);
    mStartNs = mEvents == 0 ? timeNs : std::min(mStartNs, timeNs);
    mEndNs = std::max(mEndNs, timeNs);
    ++mEvents;
    if (!print.empty()) addPrint(print, timeNs, tid);
}

void FtraceBundles::addPrint(std::string_view print, int64_t timeNs, int32_t tid) {
    pbf_message<perfetto::PrintEvent> fields(print);
    while (fields.next(perfetto::PrintEvent::Buf, protozero::pbf_wire_type::length_delimited)) {
        std::string_view text = fields.get_view();
        TraceMark mark = {};
        mark.timeNs = timeNs;
        mark.tid = tid;
        switch (parseMarkPayload(trimStart(trimEnd(takeUntil('\n', &text))), &mark)) {
            case MarkPayload::Mark:
                break;
            case MarkPayload::Other:
                continue;
            case MarkPayload::BadCounterValue:
                ++mBadCounters;
                continue;
        }
        noteThread(tid);
        mMarks.add(mark);
    }
}

void FtraceBundles::noteThread(int32_t tid) {
    if (tid == mLastThread) return;
    mLastThread = tid;
    mThreads.insert(tid);
}

}  // namespace brevold::trace
