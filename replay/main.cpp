#include <CLI/CLI.hpp>
#include <iostream>
#include <optional>

#include "base/error.h"
#include "base/output_file.h"
#include "host/device_profile.h"
#include "replay/comparison.h"
#include "replay/hints_csv.h"
#include "replay/isolated_play.h"
#include "replay/marked_trace.h"
#include "replay/plot.h"
#include "replay/summary.h"
#include "replay/summary_json.h"
#include "replay/summary_text.h"
#include "trace/read_timeline.h"

namespace {

using namespace brevold;
using namespace brevold::replay;

constexpr size_t kPartings = 5;

struct Options {
    std::vector<std::string> traces;
    std::string profile;
    std::vector<std::string> settings;
    std::vector<std::string> vsSettings;
    std::string hints;
    std::string traceOut;
    std::string plot;
    bool json = false;
    trace::TimelineOptions timeline;
};

void addOptions(CLI::App& app, Options& options) {
    app.add_option("TRACE", options.traces,
                   "ftrace text, systrace page or latency dump, also as gzip; - for standard input")
            ->required();
    app.add_option("--profile", options.profile, "the device to play: a file of key=value lines")
            ->type_name("FILE");
    app.add_option("--set", options.settings,
                   "one entry of the profile, over what the file says; repeatable")
            ->type_name("KEY=VALUE")
            ->expected(1)
            ->take_all();
    app.add_option("--vs", options.vsSettings,
                   "replay once more with this entry changed, and compare; repeatable")
            ->type_name("KEY=VALUE")
            ->expected(1)
            ->take_all();
    app.add_option("--layer", options.timeline.layer,
                   "the focused layer; without it the one with most frames")
            ->type_name("NAME");
    app.add_option("--refresh-rate", options.timeline.refreshRateHz,
                   "display refresh rate in Hz, over what the trace tells")
            ->type_name("HZ")
            ->check(CLI::Range(1.0, 1000.0));
    app.add_option("--hints", options.hints, "write the hints sent, as CSV")->type_name("FILE");
    app.add_option("--trace-out", options.traceOut,
                   "write the trace with the library's marks in it")
            ->type_name("FILE");
    app.add_option("--plot", options.plot, "draw the replay, with gnuplot")
            ->type_name("FILE.svg|.png");
    app.add_flag("--json", options.json, "print the summary as one JSON object");
    app.set_version_flag("--version", BREVOLD_VERSION);
}

void applyProfile(const Options& options) {
    if (!options.profile.empty()) host::loadProfile(options.profile);
    for (const std::string& setting : options.settings) {
        try {
            host::setProfileEntry(setting);
        } catch (const host::ProfileError& error) {
            throw host::ProfileError("--set " + setting + ": " + error.what());
        }
    }
}

void writeHints(const std::string& path, const Recording& recording) {
    OutputFile file(path);
    writeHintsCsv(recording.hints, file.stream());
    file.commit();
}

void writeTrace(const std::string& path, trace::TraceInput& input, const trace::Timeline& timeline,
                const trace::TraceForm& form, const Recording& recording) {
    OutputFile file(path);
    writeTrace(input.open(), input.name(), timeline, form, recording, file.stream());
    file.commit();
}

void writePlot(const std::string& path, const std::string& trace, const trace::Timeline& timeline,
               const Recording& recording) {
    OutputFile file(path);
    plot(trace, timeline, recording, plotTerminal(path), file.stream());
    file.commit();
}

/** Replays one trace, and prints what is not for the whole run. */
TraceResult replayTrace(const std::string& path, const Options& options) {
    trace::TraceInput input(
            path, options.traceOut.empty() ? trace::Reading::Once : trace::Reading::Repeated);
    const std::string& trace = input.name();
    if (!options.traceOut.empty() && input.kind() == trace::TraceInput::Kind::LatencyDump) {
        throw InputError(trace + ": --trace-out needs a trace, and this is a latency dump");
    }
    trace::TraceForm form;
    const trace::Timeline timeline = trace::readTimeline(input, options.timeline, &form);

    const Recording recording = playIsolated(timeline, {});
    TraceResult result = {summarise(trace, timeline, recording), {}};
    std::vector<Parting> partings;
    if (!options.vsSettings.empty()) {
        const Recording other = playIsolated(timeline, options.vsSettings);
        result.vs = summarise(trace, timeline, other);
        partings = firstPartings(recording, other, kPartings);
    }
    if (!options.hints.empty()) writeHints(options.hints, recording);
    if (!options.traceOut.empty()) writeTrace(options.traceOut, input, timeline, form, recording);
    if (!options.plot.empty()) writePlot(options.plot, trace, timeline, recording);
    if (!options.json && options.traces.size() == 1) {
        print(result.summary, std::cout);
        if (result.vs) {
            printComparison(result.summary, *result.vs, partings, timeline.startNs, std::cout);
        }
    }
    return result;
}

void checkOutputs(const Options& options) {
    if (!options.plot.empty()) plotTerminal(options.plot);
    if (options.traces.size() == 1) return;
    const std::pair<const char*, const std::string&> outputs[] = {{"--hints", options.hints},
                                                                  {"--trace-out", options.traceOut},
                                                                  {"--plot", options.plot}};
    for (const auto& [name, path] : outputs) {
        if (!path.empty()) throw std::runtime_error(std::string(name) + " takes one trace");
    }
}

void printError(const std::exception& error) {
    std::cerr << "brevold-replay: " << error.what() << '\n';
}

/** False where a trace could not be replayed; the others are, all the same. */
bool run(const Options& options) {
    checkOutputs(options);
    applyProfile(options);
    std::vector<TraceResult> results;
    for (const std::string& trace : options.traces) {
        try {
            results.push_back(replayTrace(trace, options));
        } catch (const std::exception& error) {
            printError(error);
        }
    }
    if (results.empty()) return false;
    if (options.json) {
        printJson(results, std::cout);
    } else if (options.traces.size() > 1) {
        printRows(results, std::cout);
    }
    std::cout.flush();
    if (!std::cout) throw OutputError("the summary cannot be written to standard output");
    return results.size() == options.traces.size();
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
            "Plays a recorded trace to libbrevold in the trace's own time and prints what the "
            "library asked of the performance service.",
            "brevold-replay");
    Options options;
    addOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    try {
        return run(options) ? 0 : 1;
    } catch (const std::exception& error) {
        printError(error);
        return 1;
    }
}
