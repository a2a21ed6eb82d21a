#include "base/child_process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace brevold {

namespace {

// An exception must not unwind into the parent's code.
[[noreturn]] void runChild(const ChildProcess::Work& work, pid_t parent,
                           Descriptor output) noexcept {
    // Unlike SIGKILL, SIGTERM lets the process remove its partial files.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    // The parent may have ended before prctl took effect.
    if (getppid() != parent) _exit(1);
    _exit(work(std::move(output)) ? 0 : 1);
}

}  // namespace

int waitForChild(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) throw std::runtime_error("waitpid: " + errnoText(errno));
    }
    return status;
}

std::string ProcessEnd::text() const {
    if (signal != 0) return strsignal(signal);
    return "its process ended with exit status " + std::to_string(exitStatus);
}

ChildProcess::ChildProcess(const Work& work) {
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) throw std::runtime_error("pipe: " + errnoText(errno));
    mPipe = Descriptor(fds[0]);
    Descriptor output(fds[1]);
    const pid_t parent = getpid();
    mChild = fork();
    if (mChild < 0) throw std::runtime_error("fork: " + errnoText(errno));
    if (mChild > 0) return;
    mPipe.reset();
    runChild(work, parent, std::move(output));
}

ChildProcess::~ChildProcess() {
    if (mChild <= 0) return;
    kill(mChild, SIGTERM);
    waitpid(mChild, nullptr, 0);
}

ProcessEnd ChildProcess::wait() {
    const int status = waitForChild(std::exchange(mChild, -1));
    if (WIFSIGNALED(status)) return {WTERMSIG(status), 0};
    return {0, WEXITSTATUS(status)};
}

}  // namespace brevold
