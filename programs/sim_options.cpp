#include "programs/sim_options.h"

#include <unistd.h>

#include <stdexcept>

#include "base/file_identity.h"
#include "plot/plot.h"
#include "sim/sweep.h"
#include "sim/workload.h"
#include "trace/trace_member.h"

namespace brevold {

namespace {

constexpr char kWorkGroup[] = "Work";
constexpr int kMaxSeeds = 1000;
constexpr double kMinSeconds = 1.0;
constexpr double kMaxSeconds = 1e6;

void addDeviceOptions(CLI::App& app, SimOptions& options) {
    app.add_option("--device", options.device, "the simulated device: a file of key=value lines")
            ->type_name("FILE")
            ->required()
            ->check(notEmpty())
            ->group(kDeviceGroup);
    addEntries(app, "--device-set", options.deviceSettings,
               "one entry of the device file; overrides the file; may be repeated");
}

void addWorkOptions(CLI::App& app, SimOptions& options) {
    app.add_option("--workload", options.workload,
                   "a built-in workload or a file of key=value lines; built in are " +
                           CLI::detail::join(sim::builtInWorkloads(), ", "))
            ->type_name("NAME|FILE")
            ->check(notEmpty())
            ->group(kWorkGroup);
    app.add_option("--trace", options.trace,
                   "take the work of each frame from a trace that brevold-replay reads")
            ->type_name("TRACE")
            ->check(notEmpty())
            ->group(kWorkGroup);
    addLayer(app, options.layer)->needs("--trace")->group(kWorkGroup);
    app.add_option("--seeds", options.seeds, "runs of each variant, each with other work")
            ->type_name("N")
            ->check(CLI::Range(1, kMaxSeeds).description(""))
            ->excludes("--trace")
            ->capture_default_str()
            ->group(kWorkGroup);
    app.add_option("--seconds", options.seconds,
                   "simulated time of each run, after 3 s of warm-up (default: 60, or the length "
                   "of the trace)")
            ->type_name("S")
            ->check(numberFrom(kMinSeconds, kMaxSeconds))
            ->group(kWorkGroup);
}

void addOutputOptions(CLI::App& app, SimOptions& options) {
    std::vector<std::string> sweeps;
    for (const auto& [word, sweep] : sim::kSweepWords)
        sweeps.emplace_back(word);
    app.add_option("--sweep", options.sweep,
                   "one table of all readings of the service, all governors, several numbers of "
                   "buffers, or both boost depths")
            ->type_name(CLI::detail::join(sweeps, "|"))
            ->check(CLI::IsMember(sweeps).description(""))
            ->group(kOutputGroup);
    app.get_option("--trace-out")
            ->description(
                    "write the run of the first seed as a trace for viewers and brevold-replay; - "
                    "is standard output")
            ->excludes("--sweep");
    app.get_option("--plot")->description(
            "draw the runs of the first seed, or the energy of a sweep against missed vsyncs "
            "(needs gnuplot)");
}

}  // namespace

void addOptions(CLI::App& app, SimOptions& options) {
    addDeviceOptions(app, options);
    addCommonOptions(app, options.common);
    addWorkOptions(app, options);
    addOutputOptions(app, options);
    app.footer(
            "Exit status: 0 if all runs succeeded, 1 if a run, the trace or an output failed, 2 if "
            "the options or a file of settings are wrong; nothing was done then.");
}

bool printsTables(const SimOptions& options) {
    return !options.common.json && ownDescriptor(options.common.traceOut) != STDOUT_FILENO;
}

void checkOptions(const SimOptions& options) {
    if (options.workload.empty() == options.trace.empty()) {
        throw std::runtime_error("expected either --workload or --trace");
    }
    std::vector<NamedFile> outputs;
    if (options.common.json) outputs.push_back({"--json", kStandardStream});
    if (printsTables(options)) outputs.push_back({"the tables", kStandardStream});
    if (!options.common.traceOut.empty()) {
        outputs.push_back({"--trace-out", options.common.traceOut});
    }
    if (!options.common.plot.empty()) {
        plot::plotTerminal(options.common.plot);
        outputs.push_back({"--plot", options.common.plot});
    }
    requireSeparateFiles({options.common.profile, options.device, options.workload,
                          trace::splitMemberPath(options.trace).file},
                         outputs);
}

}  // namespace brevold
