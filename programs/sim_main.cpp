#include <fmt/format.h>

#include <cmath>
#include <sstream>

#include "base/output_file.h"
#include "plot/gnuplot.h"
#include "plot/plot.h"
#include "programs/program.h"
#include "programs/sim_options.h"
#include "sim/result_json.h"
#include "sim/result_parts.h"
#include "sim/result_text.h"
#include "sim/run_plot.h"
#include "sim/simulation_jobs.h"
#include "sim/sweep.h"
#include "sim/sweep_plot.h"
#include "sim/sweep_text.h"
#include "sim/trace_writer.h"

namespace {

using namespace brevold;
using namespace brevold::sim;

/** Simulates the first seed once more, in a process of its own, and writes its trace. */
void writeTrace(const std::string& path, const Setup& setup, int64_t measuredNs) {
    const Job job = [&] {
        std::ostringstream text;
        const Scenario scenario = scenarioOf(setup, setup.readings.front(), measuredNs, kFirstSeed);
        TraceWriter writer(scenario.device, scenario.workload.periodNs(), text);
        std::optional<Library> library = loadLibrary(std::vector<std::string>());
        Simulation(scenario, &*library, writer).run();
        return text.str();
    };
    OutputFile file(path);
    file.stream() << runSimulations({job}, 1).front();
    file.commit();
}

/** Draws the runs of the first seed: library off, as given, and --vs. */
std::string runPlotScript(const std::string& terminal, const Setup& setup,
                          const ExperimentOptions& options) {
    using Settings = std::vector<std::string>;
    std::vector<std::pair<std::string, std::optional<Settings>>> variants = {
            {"library off", std::nullopt}, {"as given", Settings()}};
    if (!options.vsSettings.empty()) variants.emplace_back("--vs", options.vsSettings);
    std::vector<Job> jobs;
    for (size_t i = 0; i < variants.size(); ++i) {
        jobs.push_back([&, i] {
            const Scenario scenario =
                    scenarioOf(setup, setup.readings.front(), options.measuredNs, kFirstSeed);
            RunCurvesObserver observer(scenario.device, scenario.warmUpNs);
            std::optional<Library> library = loadLibrary(variants[i].second);
            Simulation(scenario, library ? &*library : nullptr, observer).run();
            return runPanels(scenario, observer.curves(), variants[i].first);
        });
    }
    std::vector<std::string> heading = {
            fmt::format("{} on {}", setup.workload.name, setup.device.name),
            fmt::format("{}", fmt::join(describeAssumptions(setup, setup.readings.front()), ", "))};
    if (!options.vsSettings.empty()) {
        heading.push_back(fmt::format("--vs {}", fmt::join(options.vsSettings, " --vs ")));
    }
    return runPlotPage(terminal, heading, options.measuredNs, runSimulations(jobs, options.jobs));
}

void writePlot(const std::string& path, const std::string& script) {
    OutputFile file(path);
    file.stream() << plot::runGnuplot(script);
    file.commit();
}

void readFiles(const SimOptions& options, Setup& setup) {
    setup.device = readDevice(options.device, options.deviceSettings);
    setup.readings = {{setup.device.service, options.common.boostDepth}};
    if (options.trace.empty()) {
        setup.workload = readWorkload(options.workload);
        checkSetup(setup);
    }
}

void readTrace(const SimOptions& options, Setup& setup) {
    trace::TraceInput input(options.trace, trace::Reading::Repeated);
    setup.workload =
            recordedWorkload(input.name(), readRecordedWork(input, options.layer, setup.device));
    checkSetup(setup);
}

ExperimentOptions experimentOf(const SimOptions& options, const Workload& workload) {
    ExperimentOptions experiment;
    experiment.jobs = options.common.jobs;
    experiment.vsSettings = options.common.vsSettings;
    experiment.seeds = options.seeds;
    if (workload.recording) {
        experiment.seeds = 1;
        experiment.measuredNs = workload.recording->lengthNs;
    }
    if (options.seconds) {
        experiment.measuredNs = std::llround(*options.seconds * 1e9);
    }
    return experiment;
}

void run(const SimOptions& options, Setup& setup, std::ostream& out) {
    if (!options.trace.empty()) readTrace(options, setup);
    const ExperimentOptions experiment = experimentOf(options, setup.workload);
    const bool isSweep = !options.sweep.empty();
    const std::vector<SetupResult> results =
            runExperiment(isSweep ? sweepSetups(setup, parseWord(options.sweep, kSweepWords))
                                  : std::vector{setup},
                          experiment);
    if (options.common.json) {
        printJson(results, experiment, out);
    } else if (printsTables(options)) {
        isSweep ? printSweep(results, experiment, out)
                : printResult(results.front(), experiment, out);
    }
    const std::string& plot = options.common.plot;
    if (!plot.empty()) {
        const std::string terminal = plot::plotTerminal(plot);
        writePlot(plot, isSweep ? sweepPlotPage(terminal, results)
                                : runPlotScript(terminal, setup, experiment));
    }
    if (!options.common.traceOut.empty()) {
        writeTrace(options.common.traceOut, setup, experiment.measuredNs);
    }
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
            "Simulates an application, the display, the compositor and the processor in a closed "
            "loop with libbrevold, and prints its savings and its cost.",
            "brevold-sim");
    SimOptions options;
    Setup setup;
    addOptions(app, options);
    return runProgram(
            app, argc, argv,
            [&] {
                checkOptions(options);
                applyProfile(options.common);
                readFiles(options, setup);
            },
            [&](std::ostream& out) {
                run(options, setup, out);
                return ExitStatus::Success;
            });
}
