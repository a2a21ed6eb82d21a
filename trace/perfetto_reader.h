#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "trace/activity.h"
#include "trace/byte_source.h"
#include "trace/clock_offsets.h"
#include "trace/expansion_limit.h"
#include "trace/frame_timeline.h"
#include "trace/ftrace_bundles.h"
#include "trace/mark_reader.h"
#include "trace/track_events.h"

namespace brevold::trace {

/**
 * Reads the marks of a Perfetto trace: the "print" events of its ftrace bundles. All times are boot
 * time. The frame timeline is collected; all else in the trace is skipped.
 */
class PerfettoReader : public MarkReader {
  public:
    /**
     * `trace` and `sections` have to outlive the reader. Error messages begin with `path`. Adds the
     * library's sections in track events to `sections` unless it is null.
     */
    PerfettoReader(ByteSource& trace, std::string path, LibrarySections* sections = nullptr);

    /** Adds the events of the scheduler to `activity`, which has to outlive the reader. */
    PerfettoReader(ByteSource& trace, std::string path, Activity* activity);

    /**
     * The first call reads the whole trace, because each processor has bundles of its own. A packet
     * that is damaged or incomplete gives a warning. Throws InputError if the trace cannot be read,
     * is not a sequence of packets, or has no ftrace events.
     */
    bool next(TraceMark* mark) override;

    int64_t startNs() const override { return mBundles.startNs(); }
    int64_t endNs() const override { return mBundles.endNs(); }
    /** Without line numbers. */
    std::vector<TraceWarning> warnings() const override;
    /** The threads of the marks and of the process trees, and the sequence ids. */
    const TraceForm& form() const override { return mForm; }

    const FrameTimeline& frameTimeline() const { return mFrames; }

  private:
    void readAll();
    void readPacket(std::string_view packet);
    void readFields(std::string_view packet);
    void readCompressed(std::string_view bytes);

    ByteSource& mTrace;
    const std::string mPath;
    Activity* const mActivity = nullptr;
    bool mIsRead = false;
    ClockOffsets mClocks;
    FtraceBundles mBundles;
    FrameTimeline mFrames;
    std::optional<TrackEvents> mTrackEvents;
    TraceForm mForm;
    ExpansionLimit mExpansion;
    bool mIsCompressed = false;  // the packets now being read
    bool mIsCutShort = false;
    int64_t mDamagedPackets = 0;
    int32_t mLossyProcessors = 0;
};

}  // namespace brevold::trace
