#include "base/process_pool.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "base/child_process.h"
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

/** A job that runs. */
class RunningJob {
  public:
    RunningJob(const Job& job, JobResult& result)
          : mResult(result), mProcess([&](const Descriptor& output) {
                return writeAll(output.get(), runJob(job));
            }) {}

    int fd() { return mProcess.pipe().get(); }

    /** Reads once. Returns false if the job has ended; its result is then complete. */
    bool read() {
        char block[1 << 16];
        const ssize_t count = ::read(fd(), block, sizeof(block));
        if (count < 0 && errno != EINTR) throw std::runtime_error("read: " + errnoText(errno));
        if (count > 0) mBytes.append(block, static_cast<size_t>(count));
        if (count != 0) return true;
        finish();
        return false;
    }

  private:
    void finish() {
        const ProcessEnd end = mProcess.wait();
        mResult.signal = end.signal;
        if (!end.isSuccess() || mBytes.empty()) {
            mResult.error = end.text();
        } else {
            (mBytes.front() == kReturned ? mResult.bytes : mResult.error) = mBytes.substr(1);
        }
    }

    JobResult& mResult;
    ChildProcess mProcess;
    std::string mBytes;
};

using RunningJobs = std::vector<std::unique_ptr<RunningJob>>;

/** Waits for output, reads it, and removes the jobs that have ended. */
void readOutput(RunningJobs& running) {
    std::vector<pollfd> polled;
    for (const auto& job : running)
        polled.push_back({job->fd(), POLLIN, 0});
    while (poll(polled.data(), polled.size(), -1) < 0) {
        if (errno != EINTR) throw std::runtime_error("poll: " + errnoText(errno));
    }
    for (size_t i = running.size(); i-- > 0;) {
        if (polled[i].revents == 0 || running[i]->read()) continue;
        running.erase(running.begin() + static_cast<ptrdiff_t>(i));
    }
}

}  // namespace

std::vector<JobResult> runInProcesses(const std::vector<Job>& jobs, size_t maxProcesses,
                                      const std::string& progressWord) {
    std::vector<JobResult> results(jobs.size());
    std::optional<Progress> progress;
    if (jobs.size() > 1) progress.emplace(progressWord, static_cast<int64_t>(jobs.size()));
    RunningJobs running;
    size_t started = 0;
    while (started < jobs.size() || !running.empty()) {
        while (started < jobs.size() && running.size() < maxProcesses) {
            running.push_back(std::make_unique<RunningJob>(jobs[started], results[started]));
            ++started;
        }
        readOutput(running);
        if (progress) progress->update(static_cast<int64_t>(started - running.size()));
    }
    return results;
}

}  // namespace brevold
