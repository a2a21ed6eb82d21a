#include "replay/divergence.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace brevold::replay {
namespace {

host::Hint down(int64_t timeNs, uint32_t type, int32_t durationMs = 19) {
    return {timeNs, host::HintKind::Down, 0x1046, durationMs, type, 0.0, 1, 0};
}

Recording recordingOf(std::vector<host::Hint> hints, std::vector<int64_t> verdictTimesNs = {}) {
    Recording recording;
    recording.hints = std::move(hints);
    recording.verdictTimesNs = std::move(verdictTimesNs);
    return recording;
}

/** "1: 5 6/1 | /0": a time, and the type words and the number of verdicts of each side. */
std::string textOf(const Divergence& divergence) {
    std::string text = fmt::format("{}:", divergence.timeNs);
    for (const Moment& side : {divergence.first, divergence.second}) {
        for (const host::Hint& hint : side.hints)
            text += fmt::format(" {}", hint.type);
        text += fmt::format("/{}", side.verdicts);
    }
    return text + "; ";
}

TEST(DivergenceTest, FindsTheFirstTimesThatDiffer) {
    const std::tuple<const char*, Recording, Recording, std::string> cases[] = {
            {"nothing", {}, {}, ""},
            {"the same", recordingOf({down(1, 5)}, {2}), recordingOf({down(1, 5)}, {2}), ""},
            {"type word", recordingOf({down(1, 5)}), recordingOf({down(1, 6)}), "1: 5/0 6/0; "},
            {"duration", recordingOf({down(1, 5)}), recordingOf({down(1, 5, 13)}), "1: 5/0 5/0; "},
            {"one more hint at a time", recordingOf({down(1, 5)}),
             recordingOf({down(1, 5), down(1, 6)}), "1: 5/0 5 6/0; "},
            {"one more verdict at a time", recordingOf({}, {4, 4}), recordingOf({}, {4}),
             "4:/2/1; "},
            {"either side alone", recordingOf({down(1, 5)}, {7}), recordingOf({down(3, 5)}, {2, 7}),
             "1: 5/0/0; 2:/0/1; 3:/0 5/0; "},
            {"at most three in the window",
             recordingOf({down(8, 5)}, {0, 1, 2, 3, 4}),
             {},
             "1:/1/0; 2:/1/0; 3:/1/0; "},
            {"one in the window", recordingOf({down(9, 5)}, {0, 8}), {}, "8:/1/0; "},
    };
    for (const auto& [name, first, second, expected] : cases) {
        std::string text;
        for (const Divergence& divergence : firstDivergences(first, second, {1, 8}, 3))
            text += textOf(divergence);
        EXPECT_EQ(text, expected) << name;
    }
}

}  // namespace
}  // namespace brevold::replay
