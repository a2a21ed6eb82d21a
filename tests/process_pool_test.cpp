// Jobs in processes of their own: their results in order, and how many run at a time.

#include "base/process_pool.h"

#include <gtest/gtest.h>
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

class Pipe {
  public:
    Pipe() { EXPECT_EQ(pipe(mFds), 0); }
    ~Pipe() {
        close(mFds[0]);
        close(mFds[1]);
    }
    void put(char byte) const { EXPECT_EQ(write(mFds[1], &byte, 1), 1); }
    char take() const {
        char byte = 0;
        EXPECT_EQ(read(mFds[0], &byte, 1), 1);
        return byte;
    }

  private:
    int mFds[2];
};

TEST(ProcessPoolTest, RunsAsManyJobsAtATimeAsAllowed) {
    const Pipe pipe;
    const std::vector<Job> steps(20, [&] {
        pipe.put('b');
        pipe.put('e');
        return std::string();
    });
    runInProcesses(steps, 1, "");
    for (size_t i = 0; i < steps.size(); ++i)
        EXPECT_TRUE(pipe.take() == 'b' && pipe.take() == 'e');

    // Each job waits for the other one; the alarm ends it if that does not run.
    const Pipe pipes[2];
    std::vector<Job> jobs;
    for (const size_t i : {0u, 1u}) {
        jobs.push_back([&pipes, i] {
            alarm(60);
            pipes[i].put('m');
            return std::string(1, pipes[1 - i].take());
        });
    }
    for (const JobResult& result : runInProcesses(jobs, 2, ""))
        EXPECT_EQ(result.bytes, "m");
}

}  // namespace
}  // namespace brevold
