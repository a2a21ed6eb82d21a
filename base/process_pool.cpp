#include "base/process_pool.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "base/child_process.h"
#include "base/descriptor.h"
#include "base/progress.h"

namespace brevold {

namespace {

// The first byte that a process sends.
constexpr char kReturned = 'r';
constexpr char kThrew = 't';

std::string runJob(const Job& job) {
    try {
        return kReturned + job();
    } catch (const std::exception& error) {
        return kThrew + std::string(error.what());
    }
}

// An exception must not unwind into the parent's code.
[[noreturn]] void runChild(const Job& job, pid_t parent, int fd) noexcept {
    // Unlike SIGKILL, SIGTERM lets the process remove its partial files.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    // The parent may have ended before prctl took effect.
    if (getppid() != parent) _exit(1);
    _exit(writeAll(fd, runJob(job)) ? 0 : 1);
}

/** The process of one job. The destructor ends it if it still runs. */
class Process {
  public:
    Process(const Job& job, JobResult& result) : mResult(result) {
        int fds[2];
        if (pipe2(fds, O_CLOEXEC) != 0) throw std::runtime_error("pipe: " + errnoText(errno));
        mInput = Descriptor(fds[0]);
        const Descriptor output(fds[1]);
        const pid_t parent = getpid();
        mChild = fork();
        if (mChild < 0) throw std::runtime_error("fork: " + errnoText(errno));
        if (mChild == 0) runChild(job, parent, output.get());
    }
    ~Process() {
        if (mChild <= 0) return;
        kill(mChild, SIGTERM);
        waitpid(mChild, nullptr, 0);
    }

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    int fd() const { return mInput.get(); }

    /** Reads once. Returns false at the end of the output. */
    bool read() {
        char block[1 << 16];
        const ssize_t count = ::read(mInput.get(), block, sizeof(block));
        if (count < 0) {
            if (errno == EINTR) return true;
            throw std::runtime_error("read: " + errnoText(errno));
        }
        mBytes.append(block, static_cast<size_t>(count));
        return count > 0;
    }

    /** Waits for the process and stores its result. */
    void finish() {
        const int status = waitForChild(std::exchange(mChild, -1));
        if (WIFSIGNALED(status)) {
            mResult.signal = WTERMSIG(status);
            mResult.error = strsignal(mResult.signal);
        } else if (WEXITSTATUS(status) != 0 || mBytes.empty()) {
            mResult.error = "its process ended without a result, with exit status " +
                            std::to_string(WEXITSTATUS(status));
        } else {
            (mBytes.front() == kReturned ? mResult.bytes : mResult.error) = mBytes.substr(1);
        }
    }

  private:
    JobResult& mResult;
    pid_t mChild = -1;
    Descriptor mInput;
    std::string mBytes;
};

using Processes = std::vector<std::unique_ptr<Process>>;

/** Waits for output, reads it, and removes the processes that have ended. */
void readOutput(Processes& processes) {
    std::vector<pollfd> polled;
    for (const auto& process : processes)
        polled.push_back({process->fd(), POLLIN, 0});
    while (poll(polled.data(), polled.size(), -1) < 0) {
        if (errno != EINTR) throw std::runtime_error("poll: " + errnoText(errno));
    }
    for (size_t i = processes.size(); i-- > 0;) {
        if (polled[i].revents == 0 || processes[i]->read()) continue;
        processes[i]->finish();
        processes.erase(processes.begin() + static_cast<ptrdiff_t>(i));
    }
}

}  // namespace

std::vector<JobResult> runInProcesses(const std::vector<Job>& jobs, size_t maxProcesses,
                                      const std::string& progressWord) {
    std::vector<JobResult> results(jobs.size());
    std::optional<Progress> progress;
    if (jobs.size() > 1) progress.emplace(progressWord, static_cast<int64_t>(jobs.size()));
    Processes running;
    size_t started = 0;
    while (started < jobs.size() || !running.empty()) {
        while (started < jobs.size() && running.size() < maxProcesses) {
            running.push_back(std::make_unique<Process>(jobs[started], results[started]));
            ++started;
        }
        readOutput(running);
        if (progress) progress->update(static_cast<int64_t>(started - running.size()));
    }
    return results;
}

}  // namespace brevold
