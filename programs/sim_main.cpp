#include <fmt/format.h>

#include <iostream>
#include <sstream>
#include <thread>

#include "base/output_file.h"
#include "plot/gnuplot.h"
#include "plot/plot.h"
#include "programs/sim_options.h"
#include "sim/processes.h"
#include "sim/result_json.h"
#include "sim/result_text.h"
#include "sim/run_plot.h"
#include "sim/sweep.h"
#include "sim/sweep_plot.h"
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
    file.stream() << runInProcesses({job}, 1).front();
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
            RunCurvesObserver observer(scenario, kRunPlotColumns);
            std::optional<Library> library = loadLibrary(variants[i].second);
            Simulation(scenario, library ? &*library : nullptr, observer).run();
            return runPanels(scenario, observer.curves(), i, variants.size(), variants[i].first);
        });
    }
    const std::string heading =
            fmt::format("{} on {}: {}, {}", setup.workload.name, setup.device.name,
                        shortDescription(setup), shortDescription(setup.readings.front()));
    return runPlotPage(terminal, heading, runInProcesses(jobs, options.jobs));
}

void writePlot(const std::string& path, const std::string& script) {
    OutputFile file(path);
    file.stream() << plot::runGnuplot(script);
    file.commit();
}

void run(SimOptions& options) {
    const std::string terminal = options.plot.empty() ? "" : plot::plotTerminal(options.plot);
    applyProfile(options);
    options.experiment.measuredNs = static_cast<int64_t>(options.seconds * 1e9);
    Setup setup;
    setup.device = readDevice(options.device, options.deviceSettings);
    setup.workload = readWorkload(options.workload);
    setup.readings = {{setup.device.service, parseWord(options.boostDepth, kBoostDepthWords)}};
    checkSetup(setup);
    std::vector<Setup> setups = {setup};
    if (!options.sweep.empty()) setups = sweepSetups(setup, parseWord(options.sweep, kSweepWords));
    const std::vector<SetupResult> results = runExperiment(setups, options.experiment);
    if (options.json) {
        printJson(results, options.experiment, std::cout);
    } else if (options.sweep.empty()) {
        printResult(results.front(), options.experiment, std::cout);
    } else {
        printSweep(results, options.experiment, std::cout);
    }
    if (!options.plot.empty()) {
        writePlot(options.plot, options.sweep.empty()
                                        ? runPlotScript(terminal, setup, options.experiment)
                                        : sweepPlotPage(terminal, results));
    }
    if (!options.traceOut.empty()) {
        writeTrace(options.traceOut, setup, options.experiment.measuredNs);
    }
    std::cout.flush();
    if (!std::cout) throw OutputError("the result cannot be written to standard output");
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
            "Simulates an application, the display, the compositor and the processor in a closed "
            "loop with libbrevold, and prints what the library saves and costs.",
            "brevold-sim");
    SimOptions options;
    options.experiment.jobs = std::max(1u, std::thread::hardware_concurrency());
    addOptions(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    try {
        run(options);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "brevold-sim: " << error.what() << '\n';
        return 1;
    }
}
