#include "replay/isolated_play.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/inputs.h"

namespace brevold::replay {
namespace {

using Kind = trace::TimelineEvent::Kind;

const std::vector<std::string> kScaling = {"feature.5=1", "vendor.perf.pfar.enable=1",
                                           "vendor.perf.brevold.debug=1"};

TEST(IsolatedPlayTest, ReportsHowTheReplayFailed) {
    trace::Timeline timeline;
    timeline.layers = {{"com.example/a#1", 1}};
    // The first frame's predecessor has the stamp -1: their difference overflows.
    const int64_t timeNs = std::numeric_limits<int64_t>::max();
    timeline.events = {{timeNs, Kind::Frame, 0, 1, 0, 0}};
    const auto errorWith = [&](const std::vector<std::string>& settings) {
        return test::errorOf<std::runtime_error>([&] { playIsolated(timeline, settings); });
    };
    EXPECT_EQ(errorWith(kScaling), "the library ended the replay: Aborted");
    EXPECT_EQ(errorWith({"feature.5"}), "expected key=value, got \"feature.5\"");
    EXPECT_EQ(errorWith({}), "");
}

/** A steady 60 Hz for 1.5 s, during which layer 0 has a frame, and then a frame of layer 1. */
trace::Timeline timelineOfTwoLayers() {
    constexpr int64_t kPeriodNs = 16'666'666;
    constexpr int64_t kCompositions = 90;
    trace::Timeline timeline;
    timeline.layers = {{"com.a/a#1", 1}, {"com.b/b#1", 1}};
    timeline.startNs = kPeriodNs;
    timeline.events = {{kPeriodNs, Kind::Period, 0, 0, 0, kPeriodNs},
                       {kPeriodNs, Kind::Frame, 0, 1, 0, 0}};
    for (int64_t i = 1; i <= kCompositions; ++i)
        timeline.events.push_back({i * kPeriodNs, Kind::CompositionBegin, 0, 0, 0, 0});
    const int64_t endNs = kCompositions * kPeriodNs + 1;
    timeline.events.push_back({endNs, Kind::Focus, 1, 0, 0, 0});
    timeline.events.push_back({endNs, Kind::Frame, 1, 1, 0, 0});
    return timeline;
}

TEST(IsolatedPlayTest, RecordsMarksUnlessTheyAreOff) {
    for (const bool hasMarks : {true, false}) {
        PlayOptions options;
        options.hasMarks = hasMarks;
        const Recording recording = playIsolated(timelineOfTwoLayers(), kScaling, options);
        EXPECT_EQ(recording.marks.size(), hasMarks ? 2u : 0u);
        EXPECT_EQ(recording.log.size(), 1u);
    }
}

TEST(IsolatedPlayTest, ANewLayerResetsTheModeUnlessTheLibraryIgnoresIt) {
    const std::pair<const char*, std::vector<int32_t>> cases[] = {
            {"NONE", {5, 2, 5}}, {"x com.b/b#1", {5, 2}}, {"NONEcom.b/b#1", {5, 2, 5}}};
    for (const auto& [ignored, expected] : cases) {
        std::vector<std::string> settings = kScaling;
        settings.push_back(std::string("vendor.perf.brevold.debug.layers=") + ignored);
        std::vector<int32_t> modes;
        for (const ModeChange& change : playIsolated(timelineOfTwoLayers(), settings).modes)
            modes.push_back(change.mode);
        EXPECT_EQ(modes, expected) << ignored;
    }
}

}  // namespace
}  // namespace brevold::replay
