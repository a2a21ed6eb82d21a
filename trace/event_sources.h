#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "trace/event_source.h"
#include "trace/queued_layer.h"
#include "trace/refresh_period.h"
#include "trace/trace_marks.h"
#include "trace/trace_point.h"

/** The origins of a timeline's events. */
namespace brevold::trace {

/** The first change has the time of the first event. Of events of the same time, it is first. */
std::unique_ptr<EventSource> periodEvents(std::vector<PeriodChange> changes);

/** The depths of the layer Timeline::layers[index]. Empties the layer, which has to outlive it. */
std::unique_ptr<EventSource> layerEvents(QueuedLayer& layer, int32_t index);

/** The beginnings and ends of compositions that follow one another. */
std::unique_ptr<EventSource> compositionEvents(std::deque<Section> compositions);

/** Events that have no data but their points, which may be in any order. */
std::unique_ptr<EventSource> pointEvents(TimelineEvent::Kind kind, std::deque<TracePoint> points);

/**
 * Makes a composition of each group of latches, for a trace without sections of the compositor. The
 * latches may be in any order.
 */
std::deque<Section> compositionsOf(std::deque<TracePoint> latches);

}  // namespace brevold::trace
