#include "programs/trace_replay.h"

#include <optional>
#include <sstream>
#include <stdexcept>

#include "base/error.h"
#include "base/output_file.h"
#include "replay/divergence.h"
#include "replay/isolated_play.h"
#include "report/comparison_text.h"
#include "report/hints_csv.h"
#include "report/layer_list.h"
#include "report/marked_perfetto.h"
#include "report/marked_trace.h"
#include "report/result_bytes.h"
#include "report/summary_text.h"

namespace brevold {

namespace {

using namespace replay;
using trace::TraceInput;

constexpr size_t kShownDivergences = 5;

void writeHints(const std::string& path, const trace::Timeline& timeline,
                const Recording& recording, const TimeWindow& window) {
    OutputFile file(path);
    report::writeHintsCsv(timeline, recording, window, file.stream());
    file.commit();
}

std::string replayInput(TraceInput& input, const OutputFiles& files, const ReplayOptions& options) {
    const std::string& trace = input.name();
    if (!files.traceOut.empty() && input.kind() == TraceInput::Kind::LatencyDump) {
        throw InputError(trace + ": is a latency dump, and --trace-out needs a trace");
    }
    trace::TraceForm form;
    const trace::Timeline timeline = trace::readTimeline(input, options.timeline, &form);
    const TimeWindow window = windowOf(timeline, options.window, trace);
    PlayOptions play = {options.common.boostDepth};
    play.hasMarks = !files.traceOut.empty();

    const Recording recording = playIsolated(timeline, {}, play);
    report::TraceResult result = {report::summarise(trace, timeline, recording, window), {}};
    std::optional<Recording> other;
    std::vector<Divergence> divergences;
    if (!options.common.vsSettings.empty()) {
        play.hasMarks = false;
        other = playIsolated(timeline, options.common.vsSettings, play);
        result.vs = report::summarise(trace, timeline, *other, window);
        divergences = firstDivergences(recording, *other, window, kShownDivergences);
    }
    if (!files.hints.empty()) writeHints(files.hints, timeline, recording, window);
    if (!files.traceOut.empty()) {
        writeMarkedTrace(files.traceOut, input, timeline, form, recording, {});
    }
    if (!files.plot.empty()) {
        writePlot(files.plot, {trace, timeline, recording, window, other ? &*other : nullptr,
                               options.common.vsSettings});
    }
    if (combinesResults(options)) return report::toBytes(result);

    std::ostringstream text;
    report::print(result.summary, text, options.legend);
    if (result.vs) {
        report::printComparison(result.summary, *result.vs, divergences, timeline.startNs, text);
    }
    return text.str();
}

}  // namespace

void writeMarkedTrace(const std::string& path, TraceInput& input, const trace::Timeline& timeline,
                      const trace::TraceForm& form, const Recording& recording,
                      const std::vector<report::AddedTrack>& tracks) {
    OutputFile file(path);
    const bool isPerfetto = input.kind() == TraceInput::Kind::Perfetto;
    const auto write = isPerfetto ? report::writePerfetto : report::writeTrace;
    write(input.open(), input.name(), timeline, form, recording, file.stream(), tracks);
    file.commit();
}

void writePlot(const std::string& path, const plot::Plot& plot) {
    OutputFile file(path);
    plot::drawPlot(plot, plot::plotTerminal(path), file.stream());
    file.commit();
}

bool combinesResults(const ReplayOptions& options) {
    return !options.layers && (options.common.json || options.traces.size() > 1);
}

std::string replayTrace(const std::string& path, const OutputFiles& files,
                        const ReplayOptions& options) {
    TraceInput input(path,
                     files.traceOut.empty() ? trace::Reading::Once : trace::Reading::Repeated);
    try {
        return replayInput(input, files, options);
    } catch (const InputError&) {
        throw;
    } catch (const OutputError&) {
        throw;
    } catch (const std::exception& error) {
        throw std::runtime_error(input.name() + ": " + error.what());
    }
}

std::string listLayers(const std::string& path, const ReplayOptions& options) {
    TraceInput input(path);
    std::ostringstream text;
    report::printLayerList(input.name(), trace::readTimeline(input, options.timeline), text);
    return text.str();
}

}  // namespace brevold
