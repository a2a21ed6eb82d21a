#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <sstream>
#include <thread>

#include "base/output_file.h"
#include "host/device_profile.h"
#include "replay/gnuplot.h"
#include "replay/plot.h"
#include "sim/experiment.h"
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

struct Options {
    std::string device;
    std::vector<std::string> deviceSettings;
    std::string profile;
    std::vector<std::string> settings;
    std::string workload;
    std::string boostDepth = "left";
    std::string sweep;
    double seconds = 60.0;
    bool json = false;
    std::string plot;
    std::string traceOut;
    ExperimentOptions experiment;
};

template <typename T>
std::vector<std::string> namesOf(const Words<T>& words) {
    std::vector<std::string> names;
    for (const auto& [name, value] : words)
        names.emplace_back(name);
    return names;
}

template <typename T>
std::string joinWords(const Words<T>& words) {
    return CLI::detail::join(namesOf(words), "|");
}

void addEntries(CLI::App& app, const char* name, std::vector<std::string>& entries,
                const char* description) {
    app.add_option(name, entries, description)->type_name("KEY=VALUE")->expected(1)->take_all();
}

void addOptions(CLI::App& app, Options& options) {
    app.add_option("--device", options.device, "the simulated device: a file of key=value lines")
            ->type_name("FILE")
            ->required();
    addEntries(app, "--device-set", options.deviceSettings,
               "one entry of the device file, overrides the file; repeatable");
    app.add_option("--profile", options.profile,
                   "the library's settings on the device: a file of key=value lines")
            ->type_name("FILE");
    addEntries(app, "--set", options.settings,
               "one entry of the profile, overrides the file; repeatable");
    addEntries(app, "--vs", options.experiment.vsSettings,
               "simulate a second variant with this entry changed; all --vs are one variant");
    app.add_option("--workload", options.workload,
                   "a built-in workload or a file of key=value lines; built in are " +
                           CLI::detail::join(builtInWorkloads(), ", "))
            ->type_name("NAME|FILE")
            ->required();
    app.add_option("--seeds", options.experiment.seeds, "runs per variant, each with other work")
            ->type_name("N")
            ->check(CLI::Range(1, 1000))
            ->capture_default_str();
    app.add_option("--seconds", options.seconds, "simulated time of each run, after 3 s of warm-up")
            ->type_name("S")
            ->check(CLI::Range(1.0, 1e6))
            ->capture_default_str();
    app.add_option("--boost-depth", options.boostDepth,
                   "queue depth that the compositor hands over: left at the end of a composition, "
                   "or the largest found since the one before")
            ->type_name(joinWords(kBoostDepthWords))
            ->check(CLI::IsMember(namesOf(kBoostDepthWords)))
            ->capture_default_str();
    app.add_option("--sweep", options.sweep,
                   "one table over all readings of the service, governors, numbers of buffers, or "
                   "boost depths")
            ->type_name(joinWords(kSweepWords))
            ->check(CLI::IsMember(namesOf(kSweepWords)));
    app.add_flag("--json", options.json, "print the result as one JSON object");
    app.add_option(
               "--plot", options.plot,
               "draw the runs of the first seed, or a sweep's energy against missed vsyncs, with "
               "gnuplot")
            ->type_name("FILE.svg|.png");
    app.add_option("--trace-out", options.traceOut,
                   "write the run of the first seed, as given, as a trace for viewers and "
                   "brevold-replay")
            ->type_name("FILE")
            ->excludes("--sweep");
    app.add_option("--jobs", options.experiment.jobs, "runs at the same time")
            ->type_name("N")
            ->check(CLI::Range(1, 1024))
            ->default_str("number of processors");
    app.set_version_flag("--version", BREVOLD_VERSION);
}

void applyProfile(const Options& options) {
    if (!options.profile.empty()) host::loadProfile(options.profile);
    for (const std::string& setting : options.settings)
        host::setProfileEntry(setting);
}

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
            RunPlot plot(scenario);
            std::optional<Library> library = loadLibrary(variants[i].second);
            Simulation(scenario, library ? &*library : nullptr, plot).run();
            return plot.script(i, variants.size(), variants[i].first);
        });
    }
    const std::string heading =
            fmt::format("{} on {}: {}, {}", setup.workload.name, setup.device.name,
                        shortDescription(setup), shortDescription(setup.readings.front()));
    return runPlotPage(terminal, heading, runInProcesses(jobs, options.jobs));
}

void writePlot(const std::string& path, const std::string& script) {
    OutputFile file(path);
    file.stream() << replay::runGnuplot(script);
    file.commit();
}

void run(Options& options) {
    const std::string terminal = options.plot.empty() ? "" : replay::plotTerminal(options.plot);
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
    Options options;
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
