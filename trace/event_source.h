#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "trace/timeline.h"

namespace brevold::trace {

/** An event and its place among events of the same time. */
struct PlacedEvent {
    /** Relative to other events of the same line. */
    enum class Order : uint8_t { Before, At, After };

    PlacedEvent() = default;
    PlacedEvent(const TimelineEvent& event_, int64_t line, Order order = Order::At)
          : event(event_), place(line * 3 + static_cast<int64_t>(order)) {}

    TimelineEvent event;
    int64_t place;
};

/** Gives events of one origin in the order of time and place. */
class EventSource {
  public:
    virtual ~EventSource() = default;
    /** Returns false after the last event. */
    virtual bool next(PlacedEvent* event) = 0;
};

using EventSources = std::vector<std::unique_ptr<EventSource>>;

/**
 * Puts the events of all sources in the order of time and place. The sources free their data as
 * they give the events, because both may fill the memory.
 */
std::deque<TimelineEvent> mergeEvents(EventSources sources);

}  // namespace brevold::trace
