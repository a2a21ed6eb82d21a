#include "trace/latency_dump.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <limits>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "base/time_units.h"
#include "trace/event_sources.h"
#include "trace/line_reader.h"
#include "trace/queued_layer.h"
#include "trace/refresh_period.h"

namespace brevold::trace {
namespace {

/** Stands for the time of a fence that has not been signalled. */
constexpr int64_t kPending = std::numeric_limits<int64_t>::max();

struct Row {
    int64_t desiredNs;
    int64_t presentNs;
    int64_t readyNs;
    bool isCut;  // the last number may lack digits
};

// The refresh period, then the desired present, the actual present and the end of rendering of each
// frame: a slot without a frame, a presented frame, and one that waits for its present.
//   16666667
//   0	0	0
//   48173259011541	48173275678208	48173268244750
//   48173275678208	9223372036854775807	48173284903499
bool parseRow(std::string_view line, Row* row) {
    size_t firstLength = 0;
    for (int64_t* timeNs : {&row->desiredNs, &row->presentNs, &row->readyNs}) {
        line = trimStart(line);
        const std::string_view word = line.substr(0, line.find_first_of(kBlanks));
        if (timeNs == &row->desiredNs) firstLength = word.size();
        row->isCut = word.size() < firstLength;
        if (!parseWhole(word, timeNs) || *timeNs < 0) return false;
        if (*timeNs > kMaxTimeNs && *timeNs != kPending) return false;
        line.remove_prefix(word.size());
    }
    return line.empty();
}

bool isKnownTime(int64_t timeNs) {
    return timeNs != 0 && timeNs != kPending;
}

/** Frames are queued in order: not before `lastQueuedNs`. */
int64_t queueTimeNs(const Row& row, int64_t lastQueuedNs) {
    if (row.readyNs <= row.presentNs) return row.readyNs;
    // The end of rendering was reported after the present.
    const int64_t desiredNs = isKnownTime(row.desiredNs) ? row.desiredNs : row.presentNs;
    return std::min(std::max(desiredNs, lastQueuedNs), row.presentNs);
}

class DumpReader {
  public:
    DumpReader(ByteSource& text, const std::string& path) : mLines(text, path), mPath(path) {}

    Timeline read(const TimelineOptions& options) {
        const bool hasRate = options.refreshRateHz.has_value();
        const int64_t periodNs = readPeriodNs();
        readRows(periodNs);
        if (mRows == 0) {
            throw InputError(mPath +
                             ": expected rows of presented frames, got none; "
                             "was the layer drawing?");
        }
        addWarning(TraceWarning::Kind::StrayRow, mStrayRows, &mTimeline.warnings);
        addWarning(TraceWarning::Kind::UnfinishedLine, mUnfinishedRows, &mTimeline.warnings);
        addWarning(TraceWarning::Kind::OutOfOrderRow, mOutOfOrderRows, &mTimeline.warnings);

        mTimeline.layers = {{numberedName(options.layer.value_or("layer")), mRows,
                             mTimeline.startNs, mQueuedNs}};
        mTimeline.periodSource = hasRate ? PeriodSource::Option : PeriodSource::LatencyDump;
        mTimeline.compositionSource = CompositionSource::PresentTimes;
        mTimeline.vsyncSource = VsyncSource::PresentTimes;
        mergeRows(hasRate ? periodOfRate(*options.refreshRateHz) : snapPeriod(periodNs));
        setDepths();
        return std::move(mTimeline);
    }

  private:
    int64_t readPeriodNs() {
        int64_t periodNs = 0;
        for (std::string_view line; periodNs == 0 && mLines.next(&line);) {
            const std::string_view word = trimEnd(line);
            if (!parseWhole(word, &periodNs)) continue;
            if (periodNs >= kMinPeriodNs && periodNs <= kMaxPeriodNs) break;
            throw InputError(fmt::format("{}:{}: expected a refresh period of {} to {} ns, got {}",
                                         mPath, mLines.lineNumber(), kMinPeriodNs, kMaxPeriodNs,
                                         quote(word)));
        }
        return periodNs;
    }

    void readRows(int64_t periodNs) {
        for (std::string_view line; mLines.next(&line);) {
            line = trimEnd(line);
            if (line.empty()) continue;
            Row row;
            const bool isRow = parseRow(line, &row);
            if (mLines.isUnfinished() && (!isRow || row.isCut)) {
                mUnfinishedRows.add(mLines.lineNumber());
            } else if (!isRow) {
                mStrayRows.add(mLines.lineNumber());
            } else if (isKnownTime(row.presentNs) && isKnownTime(row.readyNs)) {
                addRow(row, periodNs);
            }
        }
    }

    void addRow(const Row& row, int64_t periodNs) {
        const int64_t queuedNs = queueTimeNs(row, mQueuedNs);
        if (queuedNs < mQueuedNs) {
            mOutOfOrderRows.add(mLines.lineNumber());
            return;
        }
        mQueuedNs = queuedNs;
        // The end of rendering may also be reported after the latch.
        const int64_t latchNs = std::max(queuedNs, row.presentNs - periodNs);
        if (mRows++ == 0) mTimeline.startNs = queuedNs;
        mTimeline.endNs = std::max(mTimeline.endNs, row.presentNs);
        mFrames.push_back({queuedNs, ++mPosition});
        mLatches.push_back({latchNs, ++mPosition});
        mPresents.push_back({row.presentNs, ++mPosition});
    }

    void mergeRows(int64_t periodNs) {
        using Kind = TimelineEvent::Kind;
        EventSources sources;
        sources.push_back(periodEvents({{mTimeline.startNs, periodNs}}));
        sources.push_back(compositionEvents(compositionsOf(mLatches)));
        sources.push_back(pointEvents(Kind::Frame, std::move(mFrames)));
        sources.push_back(pointEvents(Kind::Depth, std::move(mLatches)));
        sources.push_back(pointEvents(Kind::Vsync, std::move(mPresents)));
        mTimeline.events = mergeEvents(std::move(sources));
    }

    /** The depths follow from the order of the events. */
    void setDepths() {
        int32_t depth = 0;
        for (TimelineEvent& event : mTimeline.events) {
            if (event.kind == TimelineEvent::Kind::Frame) event.depth = ++depth;
            if (event.kind == TimelineEvent::Kind::Depth) event.depth = --depth;
        }
    }

    LineReader mLines;
    const std::string& mPath;
    Timeline mTimeline;
    int32_t mRows = 0;
    std::deque<TracePoint> mFrames;
    std::deque<TracePoint> mLatches;
    std::deque<TracePoint> mPresents;
    int64_t mPosition = 0;  // orders events of the same time
    int64_t mQueuedNs = 0;  // of the last row
    LineCount mStrayRows;
    LineCount mUnfinishedRows;
    LineCount mOutOfOrderRows;
};

}  // namespace

bool isLatencyDump(std::string_view head) {
    // A warning may precede the refresh period.
    for (int i = 0; i < 2; ++i) {
        const std::string_view line = trimEnd(takeUntil('\n', &head));
        if (!line.empty() && line.find_first_not_of("0123456789") == std::string_view::npos) {
            return true;
        }
    }
    return false;
}

Timeline readLatencyDump(ByteSource& text, const std::string& path,
                         const TimelineOptions& options) {
    return DumpReader(text, path).read(options);
}

}  // namespace brevold::trace
