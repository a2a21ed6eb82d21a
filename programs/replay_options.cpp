#include "programs/replay_options.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "base/file_identity.h"
#include "plot/plot.h"
#include "trace/trace_member.h"

namespace brevold {

namespace {

constexpr char kVerifyGroup[] = "Verification";
constexpr double kMinRefreshRateHz = 1.0;
constexpr double kMaxRefreshRateHz = 1000.0;
constexpr double kMaxTimeS = 1e9;

void addTraceOptions(CLI::App& app, ReplayOptions& options) {
    const auto layer = addLayer(app, options.timeline.layer);
    app.add_flag("--follow-focus", options.timeline.followsFocus,
                 "move the focus each second to the application's layer with the most frames in "
                 "that second")
            ->excludes(layer)
            ->group(kTraceGroup);
    app.add_option("--refresh-rate", options.timeline.refreshRateHz,
                   "display refresh rate in Hz, instead of the trace's own")
            ->type_name("HZ")
            ->check(numberFrom(kMinRefreshRateHz, kMaxRefreshRateHz))
            ->group(kTraceGroup);
    app.add_option("--from", options.window.fromS,
                   "report only from this time on, in seconds since the first event; the library "
                   "sees the whole trace")
            ->type_name("S")
            ->check(numberFrom(0.0, kMaxTimeS))
            ->group(kTraceGroup);
    app.add_option("--to", options.window.toS, "report only up to this time, in seconds")
            ->type_name("S")
            ->check(numberFrom(0.0, kMaxTimeS))
            ->group(kTraceGroup);
}

void addOutputOptions(CLI::App& app, ReplayOptions& options) {
    app.add_option("--hints", options.hints,
                   "write the hints that were sent, as CSV; - is standard output, DIR/ gets one "
                   "file per trace")
            ->type_name("FILE|DIR/")
            ->check(notEmpty())
            ->group(kOutputGroup);
    app.get_option("--trace-out")
            ->description(
                    "write the trace with the library's marks and hints added; - is standard "
                    "output");
    app.get_option("--plot")
            ->description("draw the replay (needs gnuplot); DIR/ gets one .png file per trace")
            ->type_name("FILE.svg|FILE.png|DIR/");
    app.add_flag_callback(
               "--explain", [&options] { options.legend = report::Legend::Shown; },
               "explain the terms below each block of the summary")
            ->group(kOutputGroup)
            ->excludes(app.get_option("--json"));
    const auto layers = app.add_flag("--layers", options.layers,
                                     "list the layers that have frames instead of replaying")
                                ->group(kOutputGroup);
    for (const char* output :
         {"--vs", "--from", "--to", "--hints", "--trace-out", "--plot", "--json", "--explain"})
        layers->excludes(app.get_option(output));
}

void addVerifyOptions(CLI::App& app, ReplayOptions& options) {
    const auto verify =
            app.add_flag("--verify", options.verify,
                         "compare the decisions of the library on the device, which its marks in "
                         "the trace show, with those of the replay")
                    ->group(kVerifyGroup);
    for (const char* other : {"--layers", "--vs", "--from", "--to", "--hints", "--explain"})
        verify->excludes(app.get_option(other));
    app.add_option("--tolerance", options.tolerancePercent,
                   fmt::format("share of the decisions that may differ after the first two "
                               "measuring windows (default: {})",
                               options.tolerancePercent))
            ->type_name("PERCENT")
            ->check(numberFrom(0.0, 100.0))
            ->needs(verify)
            ->group(kVerifyGroup);
}

/** Returns the file for a trace: `option`, or a file in the folder that it names. */
std::string outputFile(const std::string& option, const std::vector<std::string>& traces,
                       size_t index, const char* extension) {
    if (!namesFolder(option)) return option;
    constexpr size_t kMinDigits = 2;
    const std::string& trace = traces[index];
    const std::string name = trace == kStandardStream
                                     ? "standard-input"
                                     : std::filesystem::path(trace).stem().string();
    const size_t digits = std::max(kMinDigits, std::to_string(traces.size()).size());
    return fmt::format("{}{:0{}}-{}{}", option, index + 1, digits, name, extension);
}

void checkNumbers(const ReplayOptions& options) {
    const size_t traces = options.traces.size();
    if (std::count(options.traces.begin(), options.traces.end(), kStandardStream) > 1) {
        throw std::runtime_error("standard input can only be one of the traces");
    }
    if (traces == 1) return;
    if (options.verify) throw std::runtime_error("--verify takes one trace");
    if (!options.common.traceOut.empty()) throw std::runtime_error("--trace-out takes one trace");
    for (const auto& [name, value] :
         {NamedFile{"--hints", options.hints}, {"--plot", options.common.plot}}) {
        if (!value.empty() && !namesFolder(value)) {
            throw std::runtime_error(fmt::format(
                    "{} {}: with several traces, expected a folder that ends in /", name, value));
        }
    }
}

}  // namespace

void addOptions(CLI::App& app, ReplayOptions& options) {
    app.add_option(
               "TRACE", options.traces,
               "Perfetto trace, ftrace text, systrace page or latency dump, optionally compressed "
               "or in a zip archive; - reads standard input")
            ->required()
            ->check(notEmpty());
    addTraceOptions(app, options);
    addCommonOptions(app, options.common);
    addOutputOptions(app, options);
    addVerifyOptions(app, options);
    app.footer(
            "Exit status: 0 if all traces were replayed, 1 if a trace or an output failed, 2 if "
            "the options or the profile are wrong; nothing was done then. With --verify, 3 if the "
            "decisions differ or there is nothing to verify.");
}

bool namesFolder(const std::string& name) {
    return !name.empty() && name.back() == '/';
}

std::vector<OutputFiles> outputFiles(const ReplayOptions& options) {
    std::vector<OutputFiles> files;
    for (size_t i = 0; i < options.traces.size(); ++i) {
        files.push_back({outputFile(options.hints, options.traces, i, ".csv"),
                         outputFile(options.common.plot, options.traces, i, ".png"),
                         options.common.traceOut});
    }
    return files;
}

bool printsSummary(const ReplayOptions& options) {
    return !options.common.json && ownDescriptor(options.hints) != STDOUT_FILENO &&
           ownDescriptor(options.common.traceOut) != STDOUT_FILENO;
}

void checkOptions(const ReplayOptions& options) {
    replay::checkWindow(options.window);
    checkNumbers(options);
    std::vector<std::string> inputs = {options.common.profile};
    for (const std::string& trace : options.traces)
        inputs.push_back(trace::splitMemberPath(trace).file);
    std::vector<NamedFile> outputs;
    if (options.common.json) outputs.push_back({"--json", kStandardStream});
    if (printsSummary(options)) outputs.push_back({"the summary", kStandardStream});
    for (const OutputFiles& files : outputFiles(options)) {
        if (!files.plot.empty()) plot::plotTerminal(files.plot);
        for (const auto& output : {NamedFile{"--hints", files.hints},
                                   {"--trace-out", files.traceOut},
                                   {"--plot", files.plot}}) {
            if (!output.path.empty()) outputs.push_back(output);
        }
    }
    requireSeparateFiles(inputs, outputs);
}

}  // namespace brevold
