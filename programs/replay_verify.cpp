#include "programs/replay_verify.h"

#include <fmt/format.h>

#include "base/error.h"
#include "brevold/protocol.h"
#include "plot/plot.h"
#include "programs/trace_replay.h"
#include "replay/isolated_play.h"
#include "trace/read_timeline.h"
#include "verify/difference_track.h"
#include "verify/verification.h"
#include "verify/verification_json.h"
#include "verify/verification_text.h"
#include "verify/words.h"

namespace brevold {

namespace {

/** Returns the differences with labels: "decisions: the stamp is 0 or another cause". */
std::vector<plot::PlotMark> differenceMarks(const verify::Verification& verification) {
    std::vector<plot::PlotMark> marks;
    for (const verify::Difference& difference : verification.differences.list()) {
        std::string label;
        int32_t others = 0;
        difference.causes.forEach([&](verify::Cause cause) {
            if (label.empty()) {
                label = fmt::format("{}: {}", wordOf(difference.subject), textOf(cause));
            } else {
                ++others;
            }
        });
        if (others == 1) label += " or another cause";
        if (others > 1) label += fmt::format(" or one of {} other causes", others);
        marks.push_back({difference.timeNs, label});
    }
    return marks;
}

}  // namespace

bool verifyTrace(const ReplayOptions& options, std::ostream& out) {
    const std::string& traceOut = options.common.traceOut;
    trace::TraceInput input(options.traces.front(),
                            traceOut.empty() ? trace::Reading::Once : trace::Reading::Repeated);
    if (input.kind() == trace::TraceInput::Kind::LatencyDump) {
        throw InputError(input.name() + ": is a latency dump, and --verify needs a trace");
    }
    verify::DeviceTrace device;
    device.name = input.name();
    device.timeline = trace::readTimeline(input, options.timeline, &device.form, &device.sections);
    // The modes are part of the debug output; only a marked trace needs the marks.
    const auto play = [&](replay::BoostDepth boostDepth, bool debug) {
        const std::string setting = android::kDebugProperty + std::string(debug ? "=1" : "=0");
        return replay::playIsolated(device.timeline, {setting}, {boostDepth, !traceOut.empty()});
    };
    const verify::Verification result =
            verify::verify(device, options.common.boostDepth, options.tolerancePercent, play);
    if (!traceOut.empty()) {
        writeMarkedTrace(traceOut, input, device.timeline, device.form, result.replay,
                         {verify::differenceTrack(result)});
    }
    if (!options.common.plot.empty()) {
        writePlot(options.common.plot, {device.name,
                                        device.timeline,
                                        result.replay,
                                        {device.timeline.startNs, device.timeline.endNs},
                                        nullptr,
                                        {},
                                        differenceMarks(result)});
    }
    if (options.common.json) {
        verify::printJson(result, out);
    } else if (printsSummary(options)) {
        verify::print(result, out);
    }
    return result.verdict == verify::Verdict::AsExpected;
}

}  // namespace brevold
