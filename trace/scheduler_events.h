#pragma once

#include <cstdint>
#include <string_view>

#include "trace/activity.h"
#include "trace/event_line.h"

/** Adds switches of threads and changes of frequency to an Activity. */
namespace brevold::trace {

/** Adds the event `name` of a line whose `event` is the rest. Ignores other events. */
void addSchedulerEvent(const EventLine& line, std::string_view name, Activity* activity);

/**
 * Adds the events in the message FtraceEventBundle, whose clock is `offsetNs` before boot time.
 * Throws protozero::exception if it is damaged.
 */
void addSchedulerEvents(std::string_view bundle, uint64_t offsetNs, Activity* activity);

/** Adds the processes of the threads in the message ProcessTree. Throws protozero::exception. */
void addThreadProcesses(std::string_view tree, Activity* activity);

}  // namespace brevold::trace
