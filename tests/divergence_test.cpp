#include "replay/divergence.h"

#include <gtest/gtest.h>

namespace brevold::replay {
namespace {

host::Hint down(int64_t timeNs, uint32_t type, int32_t durationMs = 19) {
    return {timeNs, host::HintKind::Down, 0x1046, durationMs, type, 0.0, 1, 0};
}

Recording recordingOf(std::vector<host::Hint> hints, std::vector<int64_t> verdictTimesNs) {
    Recording recording;
    recording.hints = std::move(hints);
    recording.verdictTimesNs = std::move(verdictTimesNs);
    return recording;
}

constexpr TimeWindow kAll = {0, 100};

TEST(DivergenceTest, FindsTheFirstTimesThatDiffer) {
    const struct {
        const char* name;
        Recording first;
        Recording second;
        std::vector<int64_t> timesNs;
        TimeWindow window = kAll;
    } cases[] = {
            {"nothing", {}, {}, {}},
            {"the same", recordingOf({down(1, 5)}, {2}), recordingOf({down(1, 5)}, {2}), {}},
            {"type word", recordingOf({down(1, 5)}, {}), recordingOf({down(1, 6)}, {}), {1}},
            {"duration", recordingOf({down(1, 5)}, {}), recordingOf({down(1, 5, 13)}, {}), {1}},
            {"one more hint at a time",
             recordingOf({down(1, 5)}, {}),
             recordingOf({down(1, 5), down(1, 6)}, {}),
             {1}},
            {"one more verdict at a time", recordingOf({}, {4, 4}), recordingOf({}, {4}), {4}},
            {"either side alone",
             recordingOf({down(1, 5)}, {7}),
             recordingOf({down(3, 5)}, {2, 7}),
             {1, 2, 3}},
            {"in a window", recordingOf({down(9, 5)}, {1, 2, 3, 4}), {}, {2, 3}, {2, 3}},
            {"at most three", recordingOf({down(9, 5)}, {1, 2, 3}), {}, {1, 2, 3}},
    };
    for (const auto& c : cases) {
        std::vector<int64_t> timesNs;
        for (const Divergence& divergence : firstDivergences(c.first, c.second, c.window, 3))
            timesNs.push_back(divergence.timeNs);
        EXPECT_EQ(timesNs, c.timesNs) << c.name;
    }
}

TEST(DivergenceTest, HoldsBothSides) {
    const std::vector<Divergence> divergences = firstDivergences(
            recordingOf({down(1, 5), down(1, 6)}, {}), recordingOf({down(1, 7)}, {1}), kAll, 1);
    ASSERT_EQ(divergences.size(), 1u);
    const Divergence& divergence = divergences[0];
    ASSERT_EQ(divergence.first.hints.size(), 2u);
    EXPECT_EQ(divergence.first.hints[1].type, 6u);
    EXPECT_EQ(divergence.first.verdicts, 0);
    ASSERT_EQ(divergence.second.hints.size(), 1u);
    EXPECT_EQ(divergence.second.hints[0].type, 7u);
    EXPECT_EQ(divergence.second.verdicts, 1);
}

}  // namespace
}  // namespace brevold::replay
