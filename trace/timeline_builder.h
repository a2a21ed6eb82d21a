#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "trace/timeline.h"
#include "trace/trace_point.h"

namespace brevold::trace {

/** Fills the layers and events of a timeline. Events may be added in any order. */
class TimelineBuilder {
  public:
    /** `timeline` has to outlive the builder. */
    explicit TimelineBuilder(Timeline& timeline) : mTimeline(timeline) {}

    /** Returns the index of the new layer. */
    int32_t addLayer(std::string name);

    /** The application queues a frame. `depth` is the queue depth after the event. */
    void addFrame(TracePoint at, int32_t layer, int32_t depth);
    /** The compositor latches: it takes a frame. `depth` is the queue depth after the event. */
    void addLatch(TracePoint at, int32_t layer, int32_t depth);

    void addComposition(TracePoint begin, TracePoint end);
    /** Adds a composition around each group of latches. Call it after the last addLatch(). */
    void addCompositionsFromLatches();

    void addVsync(TracePoint at);
    void addPeriod(int64_t timeNs, int64_t periodNs);

    /** Stores the events in the timeline, in their order. Call it once, at the end. */
    void finish();

  private:
    using Kind = TimelineEvent::Kind;

    /** Orders events of the same line. */
    enum class Order : uint8_t { Before, At, After };

    struct OrderedEvent {
        int64_t line;
        Order order;
        TimelineEvent event;
    };

    void add(TracePoint at, Order order, Kind kind);
    void addDepth(TracePoint at, Kind kind, int32_t layer, int32_t depth);

    Timeline& mTimeline;
    std::vector<OrderedEvent> mEvents;
    std::vector<TracePoint> mLatches;
};

}  // namespace brevold::trace
