#include "trace/timeline_builder.h"

#include <algorithm>

namespace brevold::trace {
namespace {

/** Latches of one composition are at most this far apart. */
constexpr int64_t kMaxLatchSpanNs = 4'000'000;

}  // namespace

int32_t TimelineBuilder::addLayer(std::string name) {
    mTimeline.layers.push_back({std::move(name), 0});
    return static_cast<int32_t>(mTimeline.layers.size() - 1);
}

void TimelineBuilder::addFrame(TracePoint at, int32_t layer, int32_t depth) {
    add(at, Kind::Frame, layer, depth);
    Layer& counted = mTimeline.layers[static_cast<size_t>(layer)];
    const bool isFirst = counted.frames++ == 0;
    counted.firstFrameNs = isFirst ? at.timeNs : std::min(counted.firstFrameNs, at.timeNs);
    counted.lastFrameNs = isFirst ? at.timeNs : std::max(counted.lastFrameNs, at.timeNs);
}

void TimelineBuilder::addLatch(TracePoint at, int32_t layer, int32_t depth) {
    addDepth(at, layer, depth);
    mLatches.push_back(at);
}

void TimelineBuilder::addDepth(TracePoint at, int32_t layer, int32_t depth) {
    add(at, Kind::Depth, layer, depth);
}

void TimelineBuilder::addComposition(TracePoint begin, TracePoint end) {
    add(begin, Order::At, Kind::CompositionBegin);
    // The section whose end was lost ends in the line in which the next one begins.
    add(end, Order::Before, Kind::CompositionEnd);
}

void TimelineBuilder::addCompositionsFromLatches() {
    std::sort(mLatches.begin(), mLatches.end(),
              [](TracePoint a, TracePoint b) { return a.line < b.line; });
    for (auto first = mLatches.begin(); first != mLatches.end();) {
        const auto next = std::find_if(first, mLatches.end(), [first](TracePoint latch) {
            return latch.timeNs - first->timeNs > kMaxLatchSpanNs;
        });
        add(*first, Order::Before, Kind::CompositionBegin);
        add(*std::prev(next), Order::After, Kind::CompositionEnd);
        first = next;
    }
}

void TimelineBuilder::addVsync(TracePoint at) {
    add(at, Order::At, Kind::Vsync);
}

void TimelineBuilder::addPeriod(int64_t timeNs, int64_t periodNs) {
    mTimeline.events.push_back({timeNs, Kind::Period, 0, 0, 0, periodNs});
}

void TimelineBuilder::finish() {
    std::deque<TimelineEvent>& events = mTimeline.events;
    std::sort(events.begin(), events.end(), [](const TimelineEvent& a, const TimelineEvent& b) {
        return a.timeNs != b.timeNs ? a.timeNs < b.timeNs : placeOf(a) < placeOf(b);
    });
    for (TimelineEvent& event : events) {
        if (event.kind != Kind::Period) event.periodNs = 0;
    }
}

// Until the events are sorted, the field that only a period uses has the place of the others.
TimelineEvent& TimelineBuilder::add(TracePoint at, Order order, Kind kind) {
    const int64_t place = at.line * 3 + static_cast<int64_t>(order);
    mTimeline.events.push_back({at.timeNs, kind, 0, 0, at.tid, place});
    return mTimeline.events.back();
}

int64_t TimelineBuilder::placeOf(const TimelineEvent& event) {
    return event.kind == Kind::Period ? 0 : event.periodNs;
}

void TimelineBuilder::add(TracePoint at, Kind kind, int32_t layer, int32_t depth) {
    TimelineEvent& event = add(at, Order::At, kind);
    event.layer = layer;
    event.depth = depth;
}

}  // namespace brevold::trace
