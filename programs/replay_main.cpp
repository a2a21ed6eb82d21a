#include <iostream>

#include "base/error.h"
#include "base/output_file.h"
#include "plot/plot.h"
#include "programs/replay_options.h"
#include "programs/replay_verify.h"
#include "replay/divergence.h"
#include "replay/isolated_play.h"
#include "report/comparison_text.h"
#include "report/hints_csv.h"
#include "report/layer_list.h"
#include "report/marked_perfetto.h"
#include "report/marked_trace.h"
#include "report/summary.h"
#include "report/summary_json.h"
#include "report/summary_text.h"
#include "trace/read_timeline.h"

namespace {

using namespace brevold;
using namespace brevold::report;
using namespace brevold::replay;

constexpr size_t kShownDivergences = 5;

enum ExitStatus { kSuccess = 0, kFailure = 1, kVerdictNotGood = 3 };

void writeHints(const std::string& path, const Recording& recording, const TimeWindow& window) {
    OutputFile file(path);
    writeHintsCsv(recording.hints, window, file.stream());
    file.commit();
}

void writeTrace(const std::string& path, trace::TraceInput& input, const trace::Timeline& timeline,
                const trace::TraceForm& form, const Recording& recording) {
    OutputFile file(path);
    const bool isPerfetto = input.kind() == trace::TraceInput::Kind::Perfetto;
    const auto write = isPerfetto ? writePerfetto : report::writeTrace;
    write(input.open(), input.name(), timeline, form, recording, file.stream());
    file.commit();
}

void writePlot(const std::string& path, const std::string& trace, const trace::Timeline& timeline,
               const Recording& recording, const TimeWindow& window) {
    OutputFile file(path);
    plot::drawPlot(trace, timeline, recording, window, plot::plotTerminal(path), file.stream());
    file.commit();
}

/** Replays one trace and writes its files. Also prints the summary if it is the only trace. */
TraceResult replayTrace(const std::string& path, const Options& options) {
    trace::TraceInput input(
            path, options.traceOut.empty() ? trace::Reading::Once : trace::Reading::Repeated);
    const std::string& trace = input.name();
    if (!options.traceOut.empty() && input.kind() == trace::TraceInput::Kind::LatencyDump) {
        throw InputError(trace + ": is a latency dump, and --trace-out needs a trace");
    }
    trace::TraceForm form;
    const trace::Timeline timeline = trace::readTimeline(input, options.timeline, &form);

    const TimeWindow window = windowOf(timeline, options.window, trace);

    const Recording recording = playIsolated(timeline, {}, options.play);
    TraceResult result = {summarise(trace, timeline, recording, window), {}};
    std::vector<Divergence> divergences;
    if (!options.vsSettings.empty()) {
        const Recording other = playIsolated(timeline, options.vsSettings, options.play);
        result.vs = summarise(trace, timeline, other, window);
        divergences = firstDivergences(recording, other, window, kShownDivergences);
    }
    if (!options.hints.empty()) writeHints(options.hints, recording, window);
    if (!options.traceOut.empty()) writeTrace(options.traceOut, input, timeline, form, recording);
    if (!options.plot.empty()) writePlot(options.plot, trace, timeline, recording, window);
    if (!options.json && options.traces.size() == 1) {
        print(result.summary, std::cout);
        if (result.vs) {
            printComparison(result.summary, *result.vs, divergences, timeline.startNs, std::cout);
        }
    }
    return result;
}

void listLayers(const std::string& path, const Options& options) {
    trace::TraceInput input(path);
    printLayerList(input.name(), trace::readTimeline(input, options.timeline), std::cout);
}

void printError(const std::exception& error) {
    std::cerr << "brevold-replay: " << error.what() << '\n';
}

void requireWritten() {
    std::cout.flush();
    if (!std::cout) throw OutputError("the summary cannot be written to standard output");
}

/** If a trace cannot be replayed, the others are replayed nevertheless. */
ExitStatus run(const Options& options) {
    checkOptions(options);
    applyProfile(options);
    if (options.verify) {
        const bool isGood = verifyTrace(options);
        requireWritten();
        return isGood ? kSuccess : kVerdictNotGood;
    }
    std::vector<TraceResult> results;
    size_t listed = 0;
    for (const std::string& trace : options.traces) {
        try {
            if (options.layers) {
                listLayers(trace, options);
                ++listed;
            } else {
                results.push_back(replayTrace(trace, options));
            }
        } catch (const std::exception& error) {
            printError(error);
        }
    }
    if (options.json && !results.empty()) {
        printJson(results, std::cout);
    } else if (options.traces.size() > 1 && !results.empty()) {
        printRows(results, std::cout);
    }
    requireWritten();
    return listed + results.size() == options.traces.size() ? kSuccess : kFailure;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
            "Plays a recorded trace to libbrevold in the trace's own time and reports the hints "
            "that the library sent to the performance service.",
            "brevold-replay");
    Options options;
    addOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    try {
        return run(options);
    } catch (const std::exception& error) {
        printError(error);
        return 1;
    }
}
