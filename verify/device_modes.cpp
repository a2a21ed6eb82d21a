#include "verify/device_modes.h"

#include <algorithm>

namespace brevold::verify {

void expectModes(const ModeEvidence& modes, std::vector<ExpectedFrame>* frames,
                 std::vector<DecisionMark>* decisions) {
    std::vector<DecisionMark> expected;
    auto replayed = decisions->begin();
    for (ExpectedFrame& frame : *frames) {
        if (!frame.isModeTested) continue;
        const auto begin = std::find_if(
                replayed, decisions->end(),
                [&](const DecisionMark& decision) { return decision.timeNs >= frame.timeNs; });
        replayed = begin;
        const int32_t mode = modes.expectedModeAt(frame.timeNs);
        if (mode == frame.mode) {
            const bool isDecided = replayed != decisions->end() && replayed->timeNs == frame.timeNs;
            if (isDecided) expected.push_back(*replayed++);
            continue;
        }
        frame.mode = mode;
        const std::optional<DecisionLabel> label = decide(frame.figures());
        if (label) expected.push_back({frame.timeNs, frame.tid, *label});
    }
    *decisions = std::move(expected);
}

}  // namespace brevold::verify
