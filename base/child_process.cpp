#include "base/child_process.h"

#include <sys/wait.h>

#include <cerrno>
#include <stdexcept>

#include "base/descriptor.h"

namespace brevold {

int waitForChild(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) throw std::runtime_error("waitpid: " + errnoText(errno));
    }
    return status;
}

}  // namespace brevold
