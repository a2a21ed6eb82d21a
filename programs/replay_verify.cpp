#include "programs/replay_verify.h"

#include <iostream>

#include "base/error.h"
#include "brevold/protocol.h"
#include "replay/isolated_play.h"
#include "trace/read_timeline.h"
#include "verify/verification.h"
#include "verify/verification_json.h"
#include "verify/verification_text.h"

namespace brevold {

bool verifyTrace(const Options& options) {
    trace::TraceInput input(options.traces.front());
    if (input.kind() == trace::TraceInput::Kind::LatencyDump) {
        throw InputError(input.name() + ": is a latency dump, and --verify needs a trace");
    }
    verify::DeviceTrace device;
    device.name = input.name();
    device.timeline = trace::readTimeline(input, options.timeline, &device.form, &device.sections);
    const auto play = [&](const replay::PlayOptions& playOptions, bool hasDebugOutput) {
        const std::string setting =
                std::string(android::kDebugProperty) + (hasDebugOutput ? "=1" : "=0");
        return replay::playIsolated(device.timeline, {setting}, playOptions);
    };
    const verify::Verification result =
            verify::verify(device, options.play, options.tolerancePercent, play);
    if (options.json) {
        verify::printJson(result, std::cout);
    } else {
        verify::print(result, std::cout);
    }
    return result.verdict == verify::Verdict::AsExpected;
}

}  // namespace brevold
