#include "replay/timeline.h"

#include <algorithm>
#include <tuple>

#include "replay/compositor.h"
#include "replay/latency_dump.h"
#include "replay/refresh_period.h"
#include "replay/trace_marks.h"

namespace brevold::replay {
namespace {

using Kind = TimelineEvent::Kind;

constexpr int64_t kLatchSpanNs = 4'000'000;
constexpr int64_t kShortestPeriodNs = 1'000'000;
constexpr int64_t kLongestPeriodNs = 1'000'000'000;

/** Order of the events that stem from one line, or from the lines around it. */
enum class Place : uint8_t { Before, At, After };

void warn(const char* what, const LineCount& count, Timeline& timeline) {
    if (count.lines == 0) return;
    timeline.warnings.push_back(std::string(what) + ": " + std::to_string(count.lines) +
                                ", the first in line " + std::to_string(count.firstLine));
}

class TimelineBuilder {
  public:
    TimelineBuilder(const Compositor& compositor, Timeline& timeline)
          : mCompositor(compositor), mTimeline(timeline) {}

    void build(const TimelineOptions& options) {
        addDepths();
        addCompositions();
        addVsyncs();
        addPeriods(options);
        std::sort(mEvents.begin(), mEvents.end(), [](const auto& a, const auto& b) {
            return std::tie(a.event.timeNs, a.line, a.place) <
                   std::tie(b.event.timeNs, b.line, b.place);
        });
        mTimeline.events.reserve(mEvents.size());
        for (const PlacedEvent& placed : mEvents)
            mTimeline.events.push_back(placed.event);
    }

  private:
    struct PlacedEvent {
        int64_t line;
        Place place;
        TimelineEvent event;
    };
    struct Latch {
        int64_t timeNs;
        int64_t line;
    };

    void add(int64_t timeNs, int64_t line, Place place, Kind kind) {
        mEvents.push_back({line, place, {timeNs, kind, 0, 0, 0}});
    }

    void addDepths() {
        LineCount belowZero;
        LineCount jumps;
        for (const QueuedLayer& layer : mCompositor.layers()) {
            const auto index = static_cast<int32_t>(mTimeline.layers.size());
            int32_t frames = 0;
            int64_t lastFrameNs = 0;
            for (const DepthChange& change : layer.depths) {
                add(change.timeNs, change.line, Place::At, Kind::Depth);
                mEvents.back().event.layer = index;
                mEvents.back().event.depth = change.depth;
                if (change.isFall) {
                    mLatches.push_back({change.timeNs, change.line});
                    continue;
                }
                if (frames++ > 0) {
                    mFrameIntervals.push_back({change.timeNs, change.timeNs - lastFrameNs});
                }
                lastFrameNs = change.timeNs;
            }
            mTimeline.layers.push_back({layer.name, frames});
            belowZero.add(layer.belowZero);
            jumps.add(layer.jumps);
        }
        warn("queue depths below 0, taken as 0", belowZero, mTimeline);
        warn("queue depths that jump by more than one", jumps, mTimeline);
    }

    void addCompositions() {
        const std::vector<const Section*> sections = mCompositor.compositions();
        if (sections.empty()) {
            addLatches();
            return;
        }
        int64_t counts[std::size(kSectionNames)] = {};
        for (const Section* section : sections) {
            ++counts[section->kind];
            add(section->beginNs, section->beginLine, Place::At, Kind::CompositionBegin);
            add(section->endNs, section->endLine, Place::At, Kind::CompositionEnd);
        }
        const auto most = std::max_element(std::begin(counts), std::end(counts));
        mTimeline.compositionSource =
                std::string(kSectionNames[most - std::begin(counts)]) + " sections";
    }

    void addLatches() {
        mTimeline.compositionSource = "latches";
        std::sort(mLatches.begin(), mLatches.end(),
                  [](const Latch& a, const Latch& b) { return a.line < b.line; });
        for (auto first = mLatches.begin(); first != mLatches.end();) {
            const auto next = std::find_if(first, mLatches.end(), [&](const Latch& latch) {
                return latch.timeNs - first->timeNs > kLatchSpanNs;
            });
            const Latch& last = *std::prev(next);
            add(first->timeNs, first->line, Place::Before, Kind::CompositionBegin);
            add(last.timeNs, last.line, Place::After, Kind::CompositionEnd);
            first = next;
        }
    }

    void addVsyncs() {
        mTimeline.vsyncSource = "none in the trace";
        for (const char* name : {"VSYNC-sf", "VSYNC"}) {
            const std::vector<CounterValue> toggles = mCompositor.changesOf(name);
            if (toggles.empty()) continue;
            for (const CounterValue& toggle : toggles) {
                add(toggle.timeNs, toggle.line, Place::At, Kind::Vsync);
            }
            mTimeline.vsyncSource = name;
            return;
        }
    }

    void addPeriods(const TimelineOptions& options) {
        std::vector<PeriodChange> periods = findPeriods(options);
        periods.front().timeNs = mTimeline.startNs;
        for (const PeriodChange& change : periods) {
            add(change.timeNs, 0, Place::At, Kind::Period);
            mEvents.back().event.periodNs = change.periodNs;
        }
    }

    std::vector<PeriodChange> findPeriods(const TimelineOptions& options) {
        if (options.refreshRateHz) {
            mTimeline.periodSource = "--refresh-rate";
            return {{0, periodOfRate(*options.refreshRateHz)}};
        }
        mTimeline.periodSource = "VSR-setPeriod";
        std::vector<PeriodChange> periods = setPeriods();
        if (!periods.empty()) return periods;

        for (const std::string& name : mCompositor.periodVsyncs()) {
            const std::vector<CounterValue> toggles = mCompositor.changesOf(name);
            std::vector<Interval> intervals;
            for (size_t i = 1; i < toggles.size(); ++i) {
                intervals.push_back({toggles[i].timeNs, toggles[i].timeNs - toggles[i - 1].timeNs});
            }
            mTimeline.periodSource = name + " toggles";
            periods = followPeriod(intervals, UnknownRate::Keep);
            if (!periods.empty()) return periods;
        }

        mTimeline.periodSource = "frame intervals, as the trace has no vsyncs";
        std::stable_sort(mFrameIntervals.begin(), mFrameIntervals.end(),
                         [](const Interval& a, const Interval& b) { return a.endNs < b.endNs; });
        periods = followPeriod(mFrameIntervals, UnknownRate::Ignore);
        if (!periods.empty()) return periods;

        mTimeline.periodSource = "the default, as the trace has neither vsyncs nor steady frames";
        return {{0, kPeriod60Ns}};
    }

    std::vector<PeriodChange> setPeriods() const {
        std::vector<PeriodChange> periods;
        for (const CounterValue& set : mCompositor.changesOf("VSR-setPeriod")) {
            if (set.value < kShortestPeriodNs || set.value > kLongestPeriodNs) continue;
            const int64_t periodNs = snapPeriod(set.value);
            if (!periods.empty() && periods.back().periodNs == periodNs) continue;
            periods.push_back({set.timeNs, periodNs});
        }
        return periods;
    }

    const Compositor& mCompositor;
    Timeline& mTimeline;
    std::vector<PlacedEvent> mEvents;
    std::vector<Latch> mLatches;
    std::vector<Interval> mFrameIntervals;
};

/** How alike two names are: the length of the longest text that both hold. */
size_t commonLength(const std::string& a, const std::string& b) {
    std::vector<size_t> endingAt(b.size() + 1);
    size_t longest = 0;
    for (const char c : a) {
        for (size_t i = b.size(); i-- > 0;) {
            endingAt[i + 1] = b[i] == c ? endingAt[i] + 1 : 0;
            longest = std::max(longest, endingAt[i + 1]);
        }
    }
    return longest;
}

std::string closestNames(std::vector<Layer> layers, const std::string& name) {
    constexpr size_t kMostNames = 3;
    std::stable_sort(layers.begin(), layers.end(), [&](const Layer& a, const Layer& b) {
        return commonLength(a.name, name) > commonLength(b.name, name);
    });
    std::string list;
    for (size_t i = 0; i < std::min(layers.size(), kMostNames); ++i) {
        list += (i > 0 ? ", '" : "'") + layers[i].name + "'";
    }
    return list;
}

size_t findFocusedLayer(const std::vector<Layer>& layers, const std::string& path,
                        const std::optional<std::string>& name) {
    const auto most =
            std::max_element(layers.begin(), layers.end(),
                             [](const Layer& a, const Layer& b) { return a.frames < b.frames; });
    if (most == layers.end()) {
        throw InputError(path + ": no layer has frames; were the graphics events recorded?");
    }
    if (!name) return static_cast<size_t>(most - layers.begin());
    const auto asked = std::find_if(layers.begin(), layers.end(), [&](const Layer& layer) {
        return layer.name == *name || layer.name == *name + "#0";
    });
    if (asked == layers.end()) {
        throw InputError(path + ": no layer '" + *name + "' has frames, the closest are " +
                         closestNames(layers, *name));
    }
    return static_cast<size_t>(asked - layers.begin());
}

}  // namespace

namespace {

void build(const TraceMarks& marks, const std::string& path, const TimelineOptions& options,
           Timeline& timeline) {
    const Compositor compositor(marks);
    timeline.compositorPid = compositor.pid();
    timeline.compositorTid = compositor.tid();
    TimelineBuilder(compositor, timeline).build(options);
    timeline.focusedLayer = findFocusedLayer(timeline.layers, path, options.layer);
}

Timeline readLatencyTimeline(TraceInput& input, const TimelineOptions& options) {
    const LatencyDump dump = readLatencyDump(input.openText(), input.name(),
                                             options.layer ? *options.layer : "layer");
    Timeline timeline;
    timeline.startNs = dump.startNs;
    timeline.endNs = dump.endNs;
    warn("lines that are no row of a latency dump", dump.strayRows, timeline);
    warn("rows left out, as they go back in time", dump.backwardRows, timeline);
    build(dump.marks, input.name(), options, timeline);
    if (!options.refreshRateHz) timeline.periodSource = "the dump's first line";
    timeline.compositionSource = "present times, less a refresh";
    timeline.vsyncSource = "present times";
    return timeline;
}

}  // namespace

Timeline readTimeline(std::istream& input, const std::string& path,
                      const TimelineOptions& options) {
    FtraceReader reader(input, path);
    TraceMarks marks;
    TraceMark mark;
    while (reader.next(&mark))
        marks.add(mark);

    Timeline timeline;
    timeline.startNs = reader.startNs();
    timeline.endNs = reader.endNs();
    timeline.style = reader.style();
    timeline.threads = reader.threads();
    warn("lines that are no trace events", reader.stray(), timeline);
    if (reader.backwardLines() > 1 || !reader.endsBackward()) {
        warn("lines left out, as they go back in time", reader.backward(), timeline);
    }
    build(marks, path, options, timeline);
    return timeline;
}

Timeline readTimeline(TraceInput& input, const TimelineOptions& options) {
    if (input.kind() == TraceInput::Kind::Latency) return readLatencyTimeline(input, options);
    return readTimeline(input.openText(), input.name(), options);
}

Timeline readTimeline(const std::string& path, const TimelineOptions& options) {
    TraceInput input(path);
    return readTimeline(input, options);
}

}  // namespace brevold::replay
