#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace brevold::trace {

/** The names of processes, by process id. */
using ProcessNames = std::map<int32_t, std::string>;

/** Returns true if an element of a page that begins with `head` is a process dump. */
bool isProcessDump(std::string_view head);

/** Adds the processes in a process dump, the output of ps. Skips lines that are not processes. */
void addProcesses(std::string_view dump, ProcessNames* names);

}  // namespace brevold::trace
