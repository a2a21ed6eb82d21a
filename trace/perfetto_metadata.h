#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

/** Messages about the events. The functions throw protozero::exception for a damaged message. */
namespace brevold::trace {

using ThreadNames = std::unordered_map<int32_t, std::string>;

/**
 * Adds the threads and processes of the message ProcessTree. A process names its main thread, if
 * nothing else does, by the file name of its command.
 */
void addProcessTree(std::string_view tree, ThreadNames* threads);

/** Adds the thread of the message TrackDescriptor, if it has one. */
void addTrackThread(std::string_view descriptor, ThreadNames* threads);

/** Processors that lost events, according to the message FtraceStats for the end of the trace. */
int32_t countLossyProcessors(std::string_view stats);

}  // namespace brevold::trace
