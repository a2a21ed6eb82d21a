#include "trace/latency_dump.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "trace/line_reader.h"
#include "trace/queued_layer.h"
#include "trace/refresh_period.h"
#include "trace/timeline_builder.h"

namespace brevold::trace {
namespace {

/** Differences of times have to fit into 64 bits. */
constexpr int64_t kMaxTimeNs = 9'000'000'000'000'000'000;
/** Stands for the time of a fence that has not been signalled. */
constexpr int64_t kPending = std::numeric_limits<int64_t>::max();

struct Row {
    int64_t desiredNs;
    int64_t presentNs;
    int64_t readyNs;
};

// The refresh period, then the desired present, the actual present and the end of rendering of each
// frame: a slot without a frame, a presented frame, and one that waits for its present.
//   16666667
//   0	0	0
//   48173259011541	48173275678208	48173268244750
//   48173275678208	9223372036854775807	48173284903499
bool parseRow(std::string_view line, Row* row) {
    for (int64_t* timeNs : {&row->desiredNs, &row->presentNs, &row->readyNs}) {
        line = trimStart(line);
        const std::string_view word = line.substr(0, line.find_first_of(kBlanks));
        if (!parseWhole(word, timeNs) || *timeNs < 0) return false;
        if (*timeNs > kMaxTimeNs && *timeNs != kPending) return false;
        line.remove_prefix(word.size());
    }
    return line.empty();
}

bool isPresented(const Row& row) {
    const auto isTime = [](int64_t timeNs) { return timeNs != 0 && timeNs != kPending; };
    return isTime(row.presentNs) && isTime(row.readyNs);
}

class DumpReader {
  public:
    DumpReader(ByteSource& text, const std::string& path) : mLines(text, path), mPath(path) {}

    Timeline read(const TimelineOptions& options) {
        const int64_t periodNs = readPeriodNs();
        readRows(periodNs);
        if (mSteps.empty()) {
            throw InputError(mPath +
                             ": expected rows of presented frames, got none; "
                             "was the layer drawing?");
        }
        std::stable_sort(mSteps.begin(), mSteps.end(),
                         [](const Step& a, const Step& b) { return a.timeNs < b.timeNs; });
        Timeline timeline;
        timeline.startNs = mSteps.front().timeNs;
        timeline.endNs = mSteps.back().timeNs;
        addWarning(TraceWarning::Kind::StrayRow, mStrayRows, &timeline.warnings);
        addWarning(TraceWarning::Kind::OutOfOrderRow, mOutOfOrderRows, &timeline.warnings);

        TimelineBuilder builder(timeline);
        const bool hasRate = options.refreshRateHz.has_value();
        timeline.periodSource = hasRate ? PeriodSource::Option : PeriodSource::LatencyDump;
        builder.addPeriod(timeline.startNs,
                          hasRate ? periodOfRate(*options.refreshRateHz) : snapPeriod(periodNs));
        addSteps(builder, builder.addLayer(numberedName(options.layer.value_or("layer"))));
        timeline.compositionSource = CompositionSource::PresentTimes;
        timeline.vsyncSource = VsyncSource::PresentTimes;
        builder.finish();
        return timeline;
    }

  private:
    struct Step {
        int64_t timeNs;
        enum { Ready, Latch, Present } kind;
    };

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
        int64_t lastReadyNs = 0;
        for (std::string_view line; mLines.next(&line);) {
            line = trimEnd(line);
            if (line.empty()) continue;
            Row row;
            if (!parseRow(line, &row)) {
                mStrayRows.add(mLines.lineNumber());
                continue;
            }
            if (!isPresented(row)) continue;
            if (row.readyNs < lastReadyNs) {
                mOutOfOrderRows.add(mLines.lineNumber());
                continue;
            }
            lastReadyNs = row.readyNs;
            mSteps.push_back({row.readyNs, Step::Ready});
            // The end of rendering may be reported after the latch, and even after the present.
            mSteps.push_back({std::max(row.readyNs, row.presentNs - periodNs), Step::Latch});
            mSteps.push_back({std::max(row.readyNs, row.presentNs), Step::Present});
        }
        mLines.requireWholeLines();
    }

    void addSteps(TimelineBuilder& builder, int32_t layer) {
        int32_t depth = 0;
        TracePoint at = {0, 0};
        for (const Step& step : mSteps) {
            at = {step.timeNs, at.line + 1};
            switch (step.kind) {
                case Step::Ready:
                    builder.addFrame(at, layer, ++depth);
                    break;
                case Step::Latch:
                    builder.addLatch(at, layer, --depth);
                    break;
                case Step::Present:
                    builder.addVsync(at);
                    break;
            }
        }
        builder.addCompositionsFromLatches();
    }

    LineReader mLines;
    const std::string& mPath;
    std::vector<Step> mSteps;
    LineCount mStrayRows;
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
