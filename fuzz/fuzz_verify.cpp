// Labels of the library: any text is parsed or refused, and a trace with such labels is verified.

#include <fmt/format.h>

#include <sstream>

#include "base/error.h"
#include "fuzz/fuzz.h"
#include "trace/read_timeline.h"
#include "trace/string_source.h"
#include "verify/decision_rule.h"
#include "verify/verification.h"
#include "verify/verification_json.h"
#include "verify/verification_text.h"

using namespace brevold;
using brevold::fuzz::require;

namespace {

/** Compares the rest, however many labels cannot be read. */
constexpr double kTolerancePercent = 100.0;

/** Frames of one layer at 60 Hz, and the library's marks with the lines of the input as labels. */
std::string traceWith(const std::string& labels) {
    std::string text = "s-90 (90) [000] 1.000000: 0: C|90|VSR-setPeriod|16666666\n";
    std::istringstream lines(labels);
    int64_t timeUs = 1'000'000;
    for (std::string label; std::getline(lines, label) && timeUs < 9'000'000;) {
        timeUs += 16'667;
        const auto add = [&](int64_t laterUs, int32_t tid, const std::string& mark) {
            text += fmt::format("s-{} (90) [000] {}.{:06}: 0: {}\n", tid,
                                (timeUs + laterUs) / 1'000'000, (timeUs + laterUs) % 1'000'000,
                                mark);
        };
        add(0, 90, "B|90|composite");
        add(100, 90, "C|90|BufferTX - a|0");
        add(200, 90, "E|90");
        add(300, 91, "C|90|BufferTX - a|1");
        add(400, 91, "B|90|" + label);
        if (label.size() % 8 != 0) add(500, 91, "E|90");
    }
    return text;
}

/** A replay that may decide for every second frame. */
replay::Recording play(const trace::Timeline& timeline) {
    replay::Recording recording;
    recording.modes = {{timeline.startNs, 2}};
    int64_t frames = 0;
    for (const trace::TimelineEvent& event : timeline.events) {
        if (event.kind != trace::TimelineEvent::Kind::Frame) continue;
        const auto outcome =
                ++frames % 2 == 0 ? replay::FrameOutcome::AskedUp : replay::FrameOutcome::NoStamp;
        recording.frames.push_back({event.timeNs, outcome});
    }
    return recording;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const verify::Label label = verify::parseLabel(text);
    if (const auto* const decision = std::get_if<verify::DecisionLabel>(&label)) {
        require(verify::agree(*decision, *decision), "a decision agrees with itself");
        verify::followsRule(*decision);
    }
    trace::TraceInput input(std::make_unique<trace::StringSource>(traceWith(text)), "input");
    verify::DeviceTrace device;
    try {
        device.timeline = trace::readTimeline(input, {}, &device.form, &device.sections);
    } catch (const InputError&) {
        return 0;
    }
    const verify::Verification result =
            verify::verify(device, replay::BoostDepth::Left, kTolerancePercent,
                           [&](replay::BoostDepth, bool) { return play(device.timeline); });
    const verify::Tally& decisions = result.differences.of(verify::Subject::Decision);
    require(decisions.count >= static_cast<int64_t>(result.marks.decisions.size()) ||
                    !isCompared(result.verdict),
            "every recorded decision is compared");
    std::ostringstream out;
    verify::print(result, out);
    verify::printJson(result, out);
    require(!out.str().empty(), "the result is printed");
    return 0;
}
