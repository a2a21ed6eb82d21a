#pragma once

#include <functional>
#include <string>
#include <vector>

namespace brevold::sim {

/** A job returns its result as bytes. It may throw. */
using Job = std::function<std::string()>;

/**
 * Runs each job in a process of its own, at most `maxProcesses` at a time, because the library
 * keeps its state for the life of a process. Returns the results in the order of the jobs. Throws
 * std::runtime_error with the message of a job that failed. Call it from the only thread.
 */
std::vector<std::string> runInProcesses(const std::vector<Job>& jobs, size_t maxProcesses);

}  // namespace brevold::sim
