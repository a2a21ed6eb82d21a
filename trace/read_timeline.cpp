#include "trace/read_timeline.h"

#include <algorithm>
#include <tuple>

#include "base/error.h"
#include "trace/compositor.h"
#include "trace/ftrace_reader.h"
#include "trace/latency_dump.h"
#include "trace/refresh_period.h"
#include "trace/trace_marks.h"

namespace brevold::trace {
namespace {

using Kind = TimelineEvent::Kind;

constexpr int64_t kLatchSpanNs = 4'000'000;
constexpr int64_t kShortestPeriodNs = 1'000'000;
constexpr int64_t kLongestPeriodNs = 1'000'000'000;

/** Order of the events that stem from one line, or from the lines around it. */
enum class Place : uint8_t { Before, At, After };

void warn(TraceWarning::Kind kind, const LineCount& lines, Timeline& timeline) {
    if (lines.lines != 0) timeline.warnings.push_back({kind, lines});
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
                add(change.timeNs, change.line, Place::At,
                    change.isFall ? Kind::Depth : Kind::Frame);
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
        warn(TraceWarning::Kind::NegativeDepth, belowZero, mTimeline);
        warn(TraceWarning::Kind::DepthJump, jumps, mTimeline);
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
        mTimeline.compositionSource = static_cast<CompositionSource>(most - std::begin(counts));
    }

    void addLatches() {
        mTimeline.compositionSource = CompositionSource::Latches;
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
        constexpr std::pair<const char*, VsyncSource> kCounters[] = {
                {"VSYNC-sf", VsyncSource::VsyncSf}, {"VSYNC", VsyncSource::Vsync}};
        for (const auto& [name, source] : kCounters) {
            const std::vector<CounterValue> toggles = mCompositor.changesOf(name);
            if (toggles.empty()) continue;
            for (const CounterValue& toggle : toggles) {
                add(toggle.timeNs, toggle.line, Place::At, Kind::Vsync);
            }
            mTimeline.vsyncSource = source;
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
            mTimeline.periodSource = PeriodSource::Option;
            return {{0, periodOfRate(*options.refreshRateHz)}};
        }
        mTimeline.periodSource = PeriodSource::SetPeriod;
        std::vector<PeriodChange> periods = setPeriods();
        if (!periods.empty()) return periods;

        for (const std::string& name : mCompositor.periodVsyncs()) {
            const std::vector<CounterValue> toggles = mCompositor.changesOf(name);
            std::vector<Interval> intervals;
            for (size_t i = 1; i < toggles.size(); ++i) {
                intervals.push_back({toggles[i].timeNs, toggles[i].timeNs - toggles[i - 1].timeNs});
            }
            periods = followPeriod(intervals, UnknownRate::Keep);
            if (periods.empty()) continue;
            mTimeline.periodSource = PeriodSource::VsyncToggles;
            mTimeline.periodCounter = name;
            return periods;
        }

        mTimeline.periodSource = PeriodSource::FrameIntervals;
        std::stable_sort(mFrameIntervals.begin(), mFrameIntervals.end(),
                         [](const Interval& a, const Interval& b) { return a.endNs < b.endNs; });
        periods = followPeriod(mFrameIntervals, UnknownRate::Ignore);
        if (!periods.empty()) return periods;

        mTimeline.periodSource = PeriodSource::Default;
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

void build(const Compositor& compositor, const std::string& path, const TimelineOptions& options,
           Timeline& timeline) {
    TimelineBuilder(compositor, timeline).build(options);
    timeline.focusedLayer = findFocusedLayer(timeline.layers, path, options.layer);
}

Timeline readLatencyTimeline(TraceInput& input, const TimelineOptions& options) {
    const LatencyDump dump = readLatencyDump(input.openText(), input.name(),
                                             options.layer ? *options.layer : "layer");
    Timeline timeline;
    timeline.startNs = dump.startNs;
    timeline.endNs = dump.endNs;
    warn(TraceWarning::Kind::StrayRow, dump.strayRows, timeline);
    warn(TraceWarning::Kind::OutOfOrderRow, dump.backwardRows, timeline);
    build(Compositor(dump.marks), input.name(), options, timeline);
    if (!options.refreshRateHz) timeline.periodSource = PeriodSource::LatencyDump;
    timeline.compositionSource = CompositionSource::PresentTimes;
    timeline.vsyncSource = VsyncSource::PresentTimes;
    return timeline;
}

Timeline readTextTimeline(TraceInput& input, const TimelineOptions& options, TraceForm* form) {
    FtraceReader reader(input.openText(), input.name());
    TraceMarks marks;
    TraceMark mark;
    while (reader.next(&mark))
        marks.add(mark);

    Timeline timeline;
    timeline.startNs = reader.startNs();
    timeline.endNs = reader.endNs();
    warn(TraceWarning::Kind::StrayLine, reader.stray(), timeline);
    if (reader.backwardLines() > 1 || !reader.endsBackward()) {
        warn(TraceWarning::Kind::OutOfOrderLine, reader.backward(), timeline);
    }
    const Compositor compositor(marks);
    build(compositor, input.name(), options, timeline);
    if (form != nullptr) {
        *form = {reader.style(), reader.threads(), compositor.pid(), compositor.tid()};
    }
    return timeline;
}

}  // namespace

Timeline readTimeline(TraceInput& input, const TimelineOptions& options, TraceForm* form) {
    if (input.kind() == TraceInput::Kind::Latency) return readLatencyTimeline(input, options);
    return readTextTimeline(input, options, form);
}

}  // namespace brevold::trace
