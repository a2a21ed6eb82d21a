#pragma once

#include <functional>
#include <string>
#include <vector>

namespace brevold {

/** A piece of work. Returns its result as bytes; may throw a std::exception. */
using Job = std::function<std::string()>;

/** The end of a job. */
struct JobResult {
    /** What the job returned; empty after an error. */
    std::string bytes;
    /** Empty if the job returned. Else the message of its exception, or ProcessEnd::text(). */
    std::string error;
    /** The signal that ended the process, or 0. */
    int signal = 0;
};

/**
 * Runs each job in a process of its own, at most `maxProcesses` (1 or more) at a time, and waits
 * for all of them. Returns the results in the order of the jobs.
 *
 * A process is a fork of the caller, which must have only one thread. It ends with its parent, by
 * SIGTERM. If there are several jobs, a progress bar named `progressWord` counts them. Throws
 * std::runtime_error, after it has ended all processes, if no process can be started.
 */
std::vector<JobResult> runInProcesses(const std::vector<Job>& jobs, size_t maxProcesses,
                                      const std::string& progressWord);

}  // namespace brevold
