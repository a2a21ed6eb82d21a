#include "replay/isolated_play.h"

#include <gtest/gtest.h>

#include <limits>

namespace brevold::replay {
namespace {

TEST(IsolatedPlayTest, ReportsHowTheReplayFailed) {
    trace::Timeline timeline;
    timeline.layers = {{"com.example/a#1", 1}};
    // The first frame's predecessor has the stamp -1: their difference overflows.
    const int64_t timeNs = std::numeric_limits<int64_t>::max();
    timeline.events = {{timeNs, trace::TimelineEvent::Kind::Frame, 0, 1, 0, 0}};
    const struct {
        std::vector<std::string> settings;
        const char* error;
    } cases[] = {
            {{"vendor.perf.pfar.enable=1", "feature.5=1"}, "the library ended the replay: Aborted"},
            {{"feature.5"}, "expected key=value, got \"feature.5\""},
            {{}, ""},
    };
    for (const auto& c : cases) {
        std::string error;
        try {
            playIsolated(timeline, c.settings);
        } catch (const std::runtime_error& thrown) {
            error = thrown.what();
        }
        EXPECT_EQ(error, c.error);
    }
}

TEST(IsolatedPlayTest, RecordsMarksUnlessTheyAreOff) {
    trace::Timeline timeline;
    timeline.layers = {{"com.example/a#1", 1}};
    for (int64_t i = 1; i <= 70; ++i) {
        timeline.events.push_back(
                {i * 16666667, trace::TimelineEvent::Kind::CompositionBegin, 0, 0, 0, 0});
    }
    for (const bool hasMarks : {true, false}) {
        PlayOptions options;
        options.hasMarks = hasMarks;
        const Recording recording = playIsolated(
                timeline,
                {"feature.5=1", "vendor.perf.pfar.enable=1", "vendor.perf.brevold.debug=1"},
                options);
        EXPECT_EQ(recording.marks.size(), hasMarks ? 2u : 0u);
        EXPECT_EQ(recording.log.size(), 1u);
    }
}

}  // namespace
}  // namespace brevold::replay
