// Jobs in processes of their own: their results in order, and how many run at a time.

#include "base/process_pool.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace brevold {
namespace {

TEST(ProcessPoolTest, ReturnsResultsInTheOrderOfTheJobs) {
    const std::string large(1'000'000, 'x');
    const std::vector<Job> jobs = {
            [&] { return large; },
            []() -> std::string { throw std::runtime_error("no input"); },
            []() -> std::string { abort(); },
            []() -> std::string { _exit(3); },
            [] { return std::string(); },
    };
    for (const size_t maxProcesses : {1u, 2u, 9u}) {
        const std::vector<JobResult> results = runInProcesses(jobs, maxProcesses, "");
        ASSERT_EQ(results.size(), jobs.size());
        EXPECT_TRUE(results[0].bytes == large && results[0].error.empty());
        EXPECT_EQ(results[1].error, "no input");
        EXPECT_EQ(results[2].error + std::to_string(results[2].signal), "Aborted6");
        EXPECT_EQ(results[3].error, "its process ended with exit status 3");
        EXPECT_TRUE(results[4].error.empty() && results[4].bytes.empty());
    }
}

TEST(ProcessPoolTest, RunsAsManyJobsAtATimeAsAllowed) {
    const std::tuple<size_t, int, std::string> cases[] = {{1, 100, "-m"}, {2, 60'000, "mm"}};
    for (const auto& [maxProcesses, timeout, expected] : cases) {
        int fds[2][2];
        ASSERT_TRUE(pipe(fds[0]) == 0 && pipe(fds[1]) == 0);
        // Each job sends a byte, and waits for that of the other one.
        std::vector<Job> jobs;
        for (const size_t i : {0u, 1u}) {
            jobs.push_back([&fds, timeoutMs = timeout, i] {
                char byte = 'm';
                pollfd other = {fds[1 - i][0], POLLIN, 0};
                const bool isMet = write(fds[i][1], &byte, 1) == 1 &&
                                   poll(&other, 1, timeoutMs) == 1 && read(other.fd, &byte, 1) == 1;
                return std::string(1, isMet ? byte : '-');
            });
        }
        std::string received;
        for (const JobResult& result : runInProcesses(jobs, maxProcesses, ""))
            received += result.bytes;
        EXPECT_EQ(received, expected);
        for (const int fd : {fds[0][0], fds[0][1], fds[1][0], fds[1][1]})
            close(fd);
    }
}

}  // namespace
}  // namespace brevold
