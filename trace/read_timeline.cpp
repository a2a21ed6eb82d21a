#include "trace/read_timeline.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "trace/compositor.h"
#include "trace/focused_layer.h"
#include "trace/latency_dump.h"
#include "trace/perfetto_reader.h"
#include "trace/period_source.h"
#include "trace/queued_layer.h"
#include "trace/text_mark_reader.h"
#include "trace/timeline_builder.h"
#include "trace/vsync_counters.h"

namespace brevold::trace {
namespace {

void addLayers(const std::vector<QueuedLayer>& layers, TimelineBuilder& builder,
               std::vector<TraceWarning>* warnings) {
    LineCount belowZero;
    LineCount jumps;
    for (const QueuedLayer& layer : layers) {
        const int32_t index = builder.addLayer(layer.name);
        layer.forEachDepth([&](const DepthChange& change) {
            switch (change.kind) {
                case DepthChange::Kind::Frame:
                    builder.addFrame(change.at, index, change.depth);
                    break;
                case DepthChange::Kind::Latch:
                    builder.addLatch(change.at, index, change.depth);
                    break;
                case DepthChange::Kind::Other:
                    builder.addDepth(change.at, index, change.depth);
                    break;
            }
        });
        belowZero.add(layer.belowZero);
        jumps.add(layer.jumps);
    }
    addWarning(TraceWarning::Kind::NegativeDepth, belowZero, warnings);
    addWarning(TraceWarning::Kind::DepthJump, jumps, warnings);
}

CompositionSource addCompositions(const Compositor& compositor, TimelineBuilder& builder) {
    const std::vector<const Section*> sections = compositor.compositions();
    if (sections.empty()) {
        builder.addCompositionsFromLatches();
        return CompositionSource::Latches;
    }
    constexpr auto kSectionKinds = static_cast<size_t>(CompositionSource::Latches);
    int64_t counts[kSectionKinds] = {};
    for (const Section* section : sections) {
        ++counts[static_cast<size_t>(section->kind)];
        builder.addComposition(section->begin, section->end);
    }
    const auto max = std::max_element(std::begin(counts), std::end(counts));
    return static_cast<CompositionSource>(max - std::begin(counts));
}

VsyncSource addVsyncs(const Compositor& compositor, TimelineBuilder& builder) {
    const Vsyncs vsyncs = findVsyncs(compositor);
    if (vsyncs.toggles == nullptr) return vsyncs.source;
    for (const CounterChange& toggle : *vsyncs.toggles)
        builder.addVsync(toggle.at());
    return vsyncs.source;
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

    const Compositor compositor(marks, path);
    if (compositor.rivalWarning()) timeline.warnings.push_back(*compositor.rivalWarning());
    const std::vector<QueuedLayer> layers = findLayers(compositor);
    // This takes much memory for a moment, so do it before there are events.
    RefreshPeriods periods = findRefreshPeriods(compositor, layers, options.refreshRateHz);
    TimelineBuilder builder(timeline);
    addLayers(layers, builder, &timeline.warnings);
    const FocusedLayer focused = findFocusedLayer(timeline.layers, options.layer, path);
    timeline.focusedLayer = focused.layer;
    timeline.passedOverLayer = focused.passedOver;
    timeline.compositionSource = addCompositions(compositor, builder);
    timeline.vsyncSource = addVsyncs(compositor, builder);

    timeline.periodSource = periods.source;
    timeline.periodCounter = std::move(periods.counter);
    periods.changes.front().timeNs = timeline.startNs;
    for (const PeriodChange& change : periods.changes)
        builder.addPeriod(change.timeNs, change.periodNs);
    builder.finish();
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
