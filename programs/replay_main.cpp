#include <csignal>
#include <filesystem>

#include "base/process_pool.h"
#include "programs/program.h"
#include "programs/replay_options.h"
#include "programs/replay_verify.h"
#include "programs/trace_replay.h"
#include "report/result_bytes.h"
#include "report/summary_json.h"
#include "report/summary_rows.h"

namespace {

using namespace brevold;

void createFolders(const ReplayOptions& options) {
    for (const std::string& name : {options.hints, options.common.plot}) {
        if (namesFolder(name)) std::filesystem::create_directories(name);
    }
}

std::vector<JobResult> replayAll(const ReplayOptions& options) {
    const std::vector<OutputFiles> files = outputFiles(options);
    std::vector<Job> jobs;
    for (size_t i = 0; i < options.traces.size(); ++i) {
        jobs.push_back([&, i] {
            const std::string& trace = options.traces[i];
            return options.layers ? listLayers(trace, options)
                                  : replayTrace(trace, files[i], options);
        });
    }
    return runInProcesses(jobs, options.common.jobs, "replaying");
}

/** If a trace fails, the others are replayed nevertheless. */
ExitStatus run(const CLI::App& app, const ReplayOptions& options, std::ostream& out) {
    if (options.verify) {
        return verifyTrace(options, out) ? ExitStatus::Success : ExitStatus::VerdictNotGood;
    }
    createFolders(options);
    const std::vector<JobResult> jobs = replayAll(options);
    std::vector<report::TraceResult> results;
    ExitStatus status = ExitStatus::Success;
    for (size_t i = 0; i < jobs.size(); ++i) {
        const JobResult& job = jobs[i];
        // A reader of standard output, such as head, has ended: this process ends as silently.
        if (job.signal == SIGPIPE) raise(SIGPIPE);
        if (!job.error.empty()) {
            status = ExitStatus::Failure;
            const std::string& trace = options.traces[i];
            printError(app, job.signal == 0
                                    ? job.error
                                    : trace + ": the replay was ended by a signal: " + job.error);
        } else if (combinesResults(options)) {
            results.push_back(report::toResult(job.bytes));
        } else if (printsSummary(options)) {
            out << job.bytes;
        }
    }
    if (options.common.json) {
        report::printJson(results, out);
    } else if (!results.empty()) {
        report::printRows(results, out, options.legend);
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
            "Plays a recorded trace to libbrevold in the trace's own time and reports the hints "
            "that the library sent to the performance service.",
            "brevold-replay");
    ReplayOptions options;
    addOptions(app, options);
    return runProgram(
            app, argc, argv,
            [&] {
                checkOptions(options);
                applyProfile(options.common);
            },
            [&](std::ostream& out) { return run(app, options, out); });
}
