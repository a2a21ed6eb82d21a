#include "sim/simulation_jobs.h"

#include <stdexcept>
#include <utility>

namespace brevold::sim {

std::vector<std::string> runSimulations(const std::vector<Job>& jobs, size_t maxProcesses) {
    std::vector<std::string> results;
    for (JobResult& job : runInProcesses(jobs, maxProcesses, "simulating")) {
        if (job.signal != 0) {
            throw std::runtime_error("the library ended the simulation: " + job.error);
        }
        if (!job.error.empty()) throw std::runtime_error(job.error);
        results.push_back(std::move(job.bytes));
    }
    return results;
}

}  // namespace brevold::sim
