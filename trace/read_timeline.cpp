#include "trace/read_timeline.h"

#include <algorithm>
#include <iterator>

#include "trace/compositor.h"
#include "trace/focused_layer.h"
#include "trace/latency_dump.h"
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
        for (const DepthChange& change : layer.depths) {
            if (change.isFrame) {
                builder.addFrame(change.at, index, change.depth);
            } else {
                builder.addLatch(change.at, index, change.depth);
            }
        }
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
    for (const CounterValue& toggle : vsyncs.toggles)
        builder.addVsync(toggle.at);
    return vsyncs.source;
}

Timeline readMarks(MarkReader& reader, const std::string& path, const TimelineOptions& options,
                   TraceForm* form) {
    TraceMarks marks;
    for (TraceMark mark; reader.next(&mark);)
        marks.add(mark);

    Timeline timeline;
    timeline.startNs = reader.startNs();
    timeline.endNs = reader.endNs();
    timeline.warnings = reader.warnings();

    const Compositor compositor(marks);
    const std::vector<QueuedLayer> layers = findLayers(compositor);
    TimelineBuilder builder(timeline);
    addLayers(layers, builder, &timeline.warnings);
    timeline.focusedLayer = findFocusedLayer(timeline.layers, options.layer, path);
    timeline.compositionSource = addCompositions(compositor, builder);
    timeline.vsyncSource = addVsyncs(compositor, builder);

    RefreshPeriods periods = findRefreshPeriods(compositor, layers, options.refreshRateHz);
    timeline.periodSource = periods.source;
    timeline.periodCounter = std::move(periods.counter);
    periods.changes.front().timeNs = timeline.startNs;
    for (const PeriodChange& change : periods.changes)
        builder.addPeriod(change.timeNs, change.periodNs);
    builder.finish();

    if (form != nullptr) {
        *form = reader.form();
        form->compositorPid = compositor.pid();
        form->compositorTid = compositor.tid();
    }
    return timeline;
}

}  // namespace

Timeline readTimeline(TraceInput& input, const TimelineOptions& options, TraceForm* form) {
    ByteSource& text = input.open();
    if (input.kind() == TraceInput::Kind::LatencyDump) {
        return readLatencyDump(text, input.name(), options);
    }
    TextMarkReader reader(text, input.name());
    return readMarks(reader, input.name(), options, form);
}

}  // namespace brevold::trace
