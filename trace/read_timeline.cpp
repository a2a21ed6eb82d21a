#include "trace/read_timeline.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <utility>

#include "trace/compositor.h"
#include "trace/event_sources.h"
#include "trace/focused_layer.h"
#include "trace/latency_dump.h"
#include "trace/perfetto_reader.h"
#include "trace/period_source.h"
#include "trace/queued_layer.h"
#include "trace/text_mark_reader.h"
#include "trace/vsync_counters.h"

namespace brevold::trace {
namespace {

std::deque<TracePoint> latchesOf(const std::deque<QueuedLayer>& layers) {
    std::deque<TracePoint> latches;
    for (const QueuedLayer& layer : layers) {
        layer.forEachDepth([&](const DepthChange& change) {
            if (change.kind == DepthChange::Kind::Latch) latches.push_back(change.at);
        });
    }
    return latches;
}

CompositionSource sourceOf(const std::deque<Section>& compositions) {
    std::map<CompositionSource, int64_t> counts;
    for (const Section& composition : compositions)
        ++counts[composition.kind];
    const auto max =
            std::max_element(counts.begin(), counts.end(),
                             [](const auto& a, const auto& b) { return a.second < b.second; });
    return max == counts.end() ? CompositionSource::Latches : max->first;
}

Timeline readMarks(MarkReader& reader, const std::string& path, const TimelineOptions& options,
                   TraceForm* form, LibrarySections* sections) {
    TraceMarks marks;
    bool hasLibraryMarks = false;
    for (TraceMark mark; reader.next(&mark);) {
        marks.add(mark);
        hasLibraryMarks |= mark.kind == TraceMark::Kind::Begin && isLibraryLabel(mark.name);
        if (sections != nullptr) sections->add(mark);
    }

    Timeline timeline;
    timeline.startNs = reader.startNs();
    timeline.endNs = reader.endNs();
    timeline.warnings = reader.warnings();

    Compositor compositor(std::move(marks), path);
    if (compositor.rivalWarning()) timeline.warnings.push_back(*compositor.rivalWarning());
    auto [layers, belowZero, jumps] = takeLayers(compositor);
    addWarning(TraceWarning::Kind::NegativeDepth, belowZero, &timeline.warnings);
    addWarning(TraceWarning::Kind::DepthJump, jumps, &timeline.warnings);
    for (const QueuedLayer& layer : layers)
        timeline.layers.push_back(layer.layer);
    const FocusedLayer focused = findFocusedLayer(timeline.layers, options.layer, path);
    timeline.focusedLayer = focused.layer;
    timeline.passedOverLayer = focused.passedOver;

    RefreshPeriods periods = findRefreshPeriods(compositor, layers, options.refreshRateHz);
    timeline.periodSource = periods.source;
    timeline.periodCounter = std::move(periods.counter);
    // The first refreshes of a trace cannot show their period.
    constexpr int64_t kShortNs = 50'000'000;
    if (periods.unknownUntilNs.value_or(0) > timeline.startNs + kShortNs) {
        timeline.warnings.push_back({TraceWarning::Kind::UnknownPeriod, {1, 0}});
        timeline.warnings.back().fromNs = *periods.unknownUntilNs - timeline.startNs;
    }
    periods.changes.front().timeNs = timeline.startNs;

    std::deque<Section> compositions = compositor.takeCompositions();
    if (compositions.empty()) compositions = compositionsOf(latchesOf(layers));
    timeline.compositionSource = sourceOf(compositions);
    Vsyncs vsyncs = takeVsyncs(compositor);
    timeline.vsyncSource = vsyncs.source;

    EventSources sources;
    int32_t index = 0;
    sources.push_back(periodEvents(std::move(periods.changes)));
    sources.push_back(compositionEvents(std::move(compositions)));
    sources.push_back(pointEvents(TimelineEvent::Kind::Vsync, std::move(vsyncs.toggles)));
    for (QueuedLayer& layer : layers)
        sources.push_back(layerEvents(layer, index++));
    timeline.events = mergeEvents(std::move(sources));
    if (options.followsFocus && !options.layer) followFocus(timeline);

    if (form != nullptr) {
        *form = reader.form();
        form->compositorPid = compositor.pid();
        form->compositorTid = compositor.tid();
        form->hasLibraryMarks = hasLibraryMarks;
    }
    return timeline;
}

std::vector<JudgedFrame> judgedFramesInFocus(const FrameTimeline& frameTimeline,
                                             const Timeline& timeline) {
    std::vector<JudgedFrame> judged;
    size_t focus = timeline.focusedLayer;
    int64_t beginNs = std::numeric_limits<int64_t>::min();
    const auto takeUntil = [&](int64_t endNs) {
        for (const JudgedFrame& frame : frameTimeline.framesOf(timeline.layers[focus].name)) {
            if (frame.endNs >= beginNs && frame.endNs < endNs) judged.push_back(frame);
        }
        beginNs = endNs;
    };
    for (const TimelineEvent& event : timeline.events) {
        if (event.kind != TimelineEvent::Kind::Focus) continue;
        takeUntil(event.timeNs);
        focus = static_cast<size_t>(event.layer);
    }
    takeUntil(std::numeric_limits<int64_t>::max());
    return judged;
}

Timeline readPerfetto(ByteSource& trace, const std::string& path, const TimelineOptions& options,
                      TraceForm* form, LibrarySections* sections) {
    PerfettoReader reader(trace, path, sections);
    Timeline timeline = readMarks(reader, path, options, form, sections);
    for (TraceWarning& warning : timeline.warnings)
        warning.lines.firstLine = 0;
    if (reader.frameTimeline().hasEvents()) {
        timeline.judgedFrames = judgedFramesInFocus(reader.frameTimeline(), timeline);
    }
    return timeline;
}

}  // namespace

Timeline readTimeline(TraceInput& input, const TimelineOptions& options, TraceForm* form,
                      LibrarySections* sections) {
    ByteSource& text = input.open();
    if (input.kind() == TraceInput::Kind::LatencyDump) {
        return readLatencyDump(text, input.name(), options);
    }
    if (input.kind() == TraceInput::Kind::Perfetto) {
        return readPerfetto(text, input.name(), options, form, sections);
    }
    TextMarkReader reader(text, input.name());
    Timeline timeline = readMarks(reader, input.name(), options, form, sections);
    if (form != nullptr) form->processes = input.processes();
    return timeline;
}

}  // namespace brevold::trace
