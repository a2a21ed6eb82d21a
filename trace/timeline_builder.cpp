#include "trace/timeline_builder.h"

#include <algorithm>
#include <optional>
#include <tuple>

namespace brevold::trace {
namespace {

/** Latches of one composition are at most this far apart. */
constexpr int64_t kMaxLatchSpanNs = 4'000'000;
constexpr int64_t kOrders = 3;

/**
 * Until finish(), periodNs of an event that has no period is its position in the trace: a separate
 * position would need half as much memory again.
 */
int64_t& positionOf(TimelineEvent& event) {
    return event.periodNs;
}

/** Periods are first among the events of their time. */
int64_t sortKey(const TimelineEvent& event) {
    return event.kind == TimelineEvent::Kind::Period ? -1 : event.periodNs;
}

}  // namespace

int32_t TimelineBuilder::addLayer(std::string name) {
    mTimeline.layers.push_back({std::move(name), 0});
    return static_cast<int32_t>(mTimeline.layers.size() - 1);
}

void TimelineBuilder::addFrame(TracePoint at, int32_t layer, int32_t depth) {
    add(at, Order::At, Kind::Frame, layer, depth);
    Layer& counted = mTimeline.layers[static_cast<size_t>(layer)];
    const bool isFirst = counted.frames++ == 0;
    counted.firstFrameNs = isFirst ? at.timeNs : std::min(counted.firstFrameNs, at.timeNs);
    counted.lastFrameNs = isFirst ? at.timeNs : std::max(counted.lastFrameNs, at.timeNs);
}

void TimelineBuilder::addLatch(TracePoint at, int32_t layer, int32_t depth) {
    add(at, Order::At, Kind::Depth, layer, depth);
}

void TimelineBuilder::addComposition(TracePoint begin, TracePoint end) {
    add(begin, Order::At, Kind::CompositionBegin);
    add(end, Order::At, Kind::CompositionEnd);
}

void TimelineBuilder::addCompositionsFromLatches() {
    sortEvents();
    std::optional<TracePoint> first;
    TracePoint last = {};
    const size_t count = mTimeline.events.size();
    for (size_t i = 0; i < count; ++i) {
        TimelineEvent& event = mTimeline.events[i];
        if (event.kind != Kind::Depth) continue;
        const TracePoint latch = {event.timeNs, positionOf(event) / kOrders, event.tid};
        if (first && latch.timeNs - first->timeNs > kMaxLatchSpanNs) {
            addCompositionAround(*first, last);
            first.reset();
        }
        if (!first) first = latch;
        last = latch;
    }
    if (first) addCompositionAround(*first, last);
}

void TimelineBuilder::addCompositionAround(TracePoint firstLatch, TracePoint lastLatch) {
    add(firstLatch, Order::Before, Kind::CompositionBegin);
    add(lastLatch, Order::After, Kind::CompositionEnd);
}

void TimelineBuilder::addVsync(TracePoint at) {
    add(at, Order::At, Kind::Vsync);
}

void TimelineBuilder::addPeriod(int64_t timeNs, int64_t periodNs) {
    mTimeline.events.push_back({timeNs, Kind::Period, 0, 0, 0, periodNs});
}

void TimelineBuilder::finish() {
    sortEvents();
    for (TimelineEvent& event : mTimeline.events) {
        if (event.kind != Kind::Period) positionOf(event) = 0;
    }
}

void TimelineBuilder::add(TracePoint at, Order order, Kind kind, int32_t layer, int32_t depth) {
    mTimeline.events.push_back({at.timeNs, kind, layer, depth, at.tid, 0});
    positionOf(mTimeline.events.back()) = at.line * kOrders + static_cast<int64_t>(order);
}

void TimelineBuilder::sortEvents() {
    std::sort(mTimeline.events.begin(), mTimeline.events.end(),
              [](const TimelineEvent& a, const TimelineEvent& b) {
                  return std::make_tuple(a.timeNs, sortKey(a)) <
                         std::make_tuple(b.timeNs, sortKey(b));
              });
}

}  // namespace brevold::trace
