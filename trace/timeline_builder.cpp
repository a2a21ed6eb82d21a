#include "trace/timeline_builder.h"

#include <algorithm>
#include <tuple>

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
    addDepth(at, Kind::Frame, layer, depth);
    ++mTimeline.layers[static_cast<size_t>(layer)].frames;
}

void TimelineBuilder::addLatch(TracePoint at, int32_t layer, int32_t depth) {
    addDepth(at, Kind::Depth, layer, depth);
    mLatches.push_back(at);
}

void TimelineBuilder::addComposition(TracePoint begin, TracePoint end) {
    add(begin, Order::At, Kind::CompositionBegin);
    add(end, Order::At, Kind::CompositionEnd);
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
    add({timeNs, 0}, Order::At, Kind::Period);
    mEvents.back().event.periodNs = periodNs;
}

void TimelineBuilder::finish() {
    std::sort(mEvents.begin(), mEvents.end(), [](const OrderedEvent& a, const OrderedEvent& b) {
        return std::tie(a.event.timeNs, a.line, a.order) <
               std::tie(b.event.timeNs, b.line, b.order);
    });
    mTimeline.events.reserve(mEvents.size());
    for (const OrderedEvent& ordered : mEvents)
        mTimeline.events.push_back(ordered.event);
}

void TimelineBuilder::add(TracePoint at, Order order, Kind kind) {
    mEvents.push_back({at.line, order, {at.timeNs, kind, 0, 0, at.tid, 0}});
}

void TimelineBuilder::addDepth(TracePoint at, Kind kind, int32_t layer, int32_t depth) {
    add(at, Order::At, kind);
    mEvents.back().event.layer = layer;
    mEvents.back().event.depth = depth;
}

}  // namespace brevold::trace
