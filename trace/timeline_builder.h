#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "trace/timeline.h"
#include "trace/trace_point.h"

namespace brevold::trace {

/**
 * Fills the layers and events of a timeline. Events may be added in any order. Takes no memory but
 * that of the events, and 24 bytes for each latch.
 */
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
    /** The queue depth changes in another way. */
    void addDepth(TracePoint at, int32_t layer, int32_t depth);

    void addComposition(TracePoint begin, TracePoint end);
    /** Adds a composition around each group of latches. Call it after the last addLatch(). */
    void addCompositionsFromLatches();

    void addVsync(TracePoint at);
    void addPeriod(int64_t timeNs, int64_t periodNs);

    /** Sorts the events. Call it once, at the end. */
    void finish();

  private:
    using Kind = TimelineEvent::Kind;

    /** Orders events of the same line. */
    enum class Order : uint8_t { Before, At, After };

    TimelineEvent& add(TracePoint at, Order order, Kind kind);
    void add(TracePoint at, Kind kind, int32_t layer, int32_t depth);
    static int64_t placeOf(const TimelineEvent& event);

    Timeline& mTimeline;
    std::deque<TracePoint> mLatches;
};

}  // namespace brevold::trace
