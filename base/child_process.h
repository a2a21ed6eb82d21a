#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

#include "base/descriptor.h"

namespace brevold {

/** Waits for a child process to end. Returns its wait status. Throws std::runtime_error. */
int waitForChild(pid_t child);

/** How a process ended. */
struct ProcessEnd {
    /** The signal that ended the process, or 0. */
    int signal;
    int exitStatus;

    bool isSuccess() const { return signal == 0 && exitStatus == 0; }
    /** "Aborted" for a signal, else "its process ended with exit status 1". */
    std::string text() const;
};

/**
 * A fork of this process, which must have only one thread. It writes to a pipe that this process
 * reads, and ends with this process, by SIGTERM.
 */
class ChildProcess {
  public:
    /** Writes to `output`. Returns false if that failed. Must not throw. */
    using Work = std::function<bool(Descriptor output)>;

    /** Starts the process. Throws std::runtime_error. */
    explicit ChildProcess(const Work& work);
    /** Ends the process if wait() was not called. */
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /** The end of the pipe to read. */
    Descriptor& pipe() { return mPipe; }

    /** Waits for the end of the process. Read the pipe first. Throws std::runtime_error. */
    ProcessEnd wait();

  private:
    pid_t mChild = -1;
    Descriptor mPipe;
};

}  // namespace brevold
