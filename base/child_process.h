#pragma once

#include <sys/types.h>

namespace brevold {

/** Waits for a child process to end. Returns its wait status. Throws std::runtime_error. */
int waitForChild(pid_t child);

}  // namespace brevold
