#include "sim/processes.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "base/child_process.h"
#include "base/descriptor.h"
#include "base/progress.h"

namespace brevold::sim {

namespace {

// The first byte of a process's output.
constexpr char kResult = 'r';
constexpr char kFailure = 'f';

struct Process {
    size_t job;
    pid_t pid;
    Descriptor output;
    std::string bytes;
};

std::string runJob(const Job& job) {
    try {
        return kResult + job();
    } catch (const std::exception& error) {
        return kFailure + std::string(error.what());
    }
}

Process start(const std::vector<Job>& jobs, size_t index) {
    int fds[2];
    if (pipe(fds) != 0) throw std::runtime_error("pipe: " + errnoText(errno));
    Descriptor output(fds[0]);
    Descriptor input(fds[1]);
    const pid_t pid = fork();
    if (pid < 0) throw std::runtime_error("fork: " + errnoText(errno));
    if (pid == 0) {
        output.reset();
        _exit(writeAll(input.get(), runJob(jobs[index])) ? 0 : 1);
    }
    return {index, pid, std::move(output), {}};
}

/** Reads what is there. Returns false at the end of the output. */
bool readSome(Process& process) {
    char block[65536];
    const ssize_t count = read(process.output.get(), block, sizeof(block));
    if (count < 0) {
        if (errno == EINTR) return true;
        throw std::runtime_error("read: " + errnoText(errno));
    }
    process.bytes.append(block, static_cast<size_t>(count));
    return count > 0;
}

void waitForExit(Process& process) {
    const int status = waitForChild(std::exchange(process.pid, 0));
    if (WIFSIGNALED(status)) {
        throw std::runtime_error(std::string("the library ended the simulation: ") +
                                 strsignal(WTERMSIG(status)));
    }
    if (process.bytes.empty()) throw std::runtime_error("a simulation gave no result");
    if (process.bytes.front() == kFailure) throw std::runtime_error(process.bytes.substr(1));
}

/** The processes that run now; reaps them also after an error. */
struct Running {
    ~Running() {
        for (Process& process : processes) {
            process.output.reset();
            if (process.pid != 0) waitpid(process.pid, nullptr, 0);
        }
    }
    std::vector<Process> processes;
};

}  // namespace

std::vector<std::string> runInProcesses(const std::vector<Job>& jobs, size_t maxProcesses) {
    std::vector<std::string> results(jobs.size());
    Progress progress("simulating", static_cast<int64_t>(jobs.size()));
    Running running;
    size_t next = 0;
    size_t done = 0;
    while (done < jobs.size()) {
        while (next < jobs.size() && running.processes.size() < maxProcesses)
            running.processes.push_back(start(jobs, next++));
        std::vector<pollfd> polled;
        for (const Process& process : running.processes)
            polled.push_back({process.output.get(), POLLIN, 0});
        if (poll(polled.data(), polled.size(), -1) < 0 && errno != EINTR) {
            throw std::runtime_error("poll: " + errnoText(errno));
        }
        for (size_t i = polled.size(); i-- > 0;) {
            Process& process = running.processes[i];
            if (polled[i].revents == 0 || readSome(process)) continue;
            waitForExit(process);
            results[process.job] = process.bytes.substr(1);
            running.processes.erase(running.processes.begin() + static_cast<ptrdiff_t>(i));
            progress.update(static_cast<int64_t>(++done));
        }
    }
    return results;
}

}  // namespace brevold::sim
