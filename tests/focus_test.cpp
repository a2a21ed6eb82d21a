// Which layer has the focus, and how the focus moves in time.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "base/error.h"
#include "replay/isolated_play.h"
#include "trace/focused_layer.h"

namespace brevold::trace {
namespace {

using Kind = TimelineEvent::Kind;

constexpr int64_t kMs = 1'000'000;
const std::string kAppA = "com.a/com.a.Main#7";
const std::string kAppB = "SurfaceView - com.b/.Main#8";

TEST(FocusTest, RecognisesApplicationsByTheirNames) {
    const std::pair<const char*, bool> cases[] = {
            {"com.example.app/com.example.app.Main#12", true},
            {"com.example/.Main", true},
            {"d9c3ab0 com.example.app/com.example.app.Main#12", true},
            {"SurfaceView - com.example_2.app/com.example.Main#0", true},
            {"SurfaceView[com.example/com.example.Main](BLAST)#17", true},
            {"a/b com.example/_Main#1", true},
            {"bbq-wrapper#2", false},
            {"Splash Screen com.example.app#1595", false},
            {"example/com.example.Main#1", false},
            {"com.2example/com.example.Main#1", false},
            {"com..example/com.example.Main#1", false},
            {".example/com.example.Main#1", false},
            {"Surface(name=com.example)/@0x1f - leash#3", false},
            {"com.example/@0x1f#3", false},
            {"com.example/", false},
            {"/", false},
    };
    for (const auto& [name, isApplication] : cases)
        EXPECT_EQ(isApplicationLayer(name), isApplication) << name;
}

TEST(FocusTest, FindsTheLayerToFocus) {
    const std::vector<Layer> system = {{"Wall#1", 7}, {"StatusBar#0", 9}, {"Dim#2", 9}};
    const std::vector<Layer> all = {{"StatusBar#0", 50}, {kAppA, 20},    {kAppB, 30},
                                    {"Wall#1", 60},      {"Wall#12", 1}, {"com.a/com.a.Old#3", 0}};
    const struct {
        const char* what;
        std::vector<Layer> layers;
        std::optional<std::string> name;
        std::string result;
    } cases[] = {
            {"the application with the most frames", all, {}, kAppB + " before Wall#1"},
            {"no application", system, {}, "StatusBar#0"},
            {"the application has the most frames", {{"Wall#1", 3}, {kAppA, 3}}, {}, kAppA},
            {"a whole name", all, "Wall#1", "Wall#1"},
            {"a name without its number", all, "StatusBar", "StatusBar#0"},
            {"a number other than 0", all, "com.a/com.a.Main", kAppA},
            {"a part", all, "com.b", kAppB},
            {"a name that fits two numbers", all, "Wall",
             "trace: several layers match 'Wall': 'Wall#1', 'Wall#12'"},
            {"a part of two", all, ".Main",
             "trace: several layers match '.Main': '" + kAppA + "', '" + kAppB + "'"},
            {"a layer without frames", all, "com.a/com.a.Old",
             "trace: no layer 'com.a/com.a.Old' has frames; the closest names are '" + kAppA +
                     "', '" + kAppB + "', 'StatusBar#0'"},
            {"no frames",
             {{kAppA, 0}},
             {},
             "trace: no layer has frames; record the trace with graphics events"},
    };
    for (const auto& [what, layers, name, expected] : cases) {
        std::string result;
        try {
            const FocusedLayer focused = findFocusedLayer(layers, name, "trace");
            result = layers[focused.layer].name;
            if (focused.passedOver) result += " before " + layers[*focused.passedOver].name;
        } catch (const InputError& error) {
            result = error.what();
        }
        EXPECT_EQ(result, expected) << what;
    }
}

/** A timeline from second 5 with frames of layers 0, 1, 2, ... at times in ms since its start. */
Timeline timelineOf(std::vector<Layer> layers, const std::vector<std::pair<int, int>>& frames) {
    Timeline timeline;
    timeline.layers = std::move(layers);
    timeline.startNs = 5000 * kMs;
    for (const auto& [ms, layer] : frames)
        timeline.events.push_back({(5000 + ms) * kMs, Kind::Frame, layer, 1, 0, 0});
    timeline.endNs = timeline.events.back().timeNs;
    return timeline;
}

TEST(FocusTest, FollowsTheLayerWithTheMostFramesInEachSecond) {
    const std::vector<Layer> layers = {{"Wall#1", 1}, {kAppA, 1}, {kAppB, 1}};
    const struct {
        const char* what;
        std::vector<Layer> layers;
        std::vector<std::pair<int, int>> frames;
        std::string focus;  // the layer with the focus, then times in ms and layers
    } cases[] = {
            {"one second", layers, {{0, 1}, {10, 2}, {20, 2}}, "2"},
            {"a change at the start of the second",
             layers,
             {{100, 1}, {998, 1}, {999, 2}, {1000, 2}, {1001, 2}},
             "1 1000:2"},
            {"a tie keeps the focus", layers, {{0, 2}, {1500, 1}, {1600, 2}}, "2"},
            {"other layers do not count",
             layers,
             {{0, 1}, {2000, 0}, {2100, 0}, {2200, 0}, {2300, 2}, {4000, 1}},
             "1 2000:2 4000:1"},
            {"idle seconds keep the focus", layers, {{0, 1}, {5000, 0}, {7000, 1}}, "1"},
            {"no frames at first", layers, {{0, 0}, {3000, 2}, {4000, 1}}, "2 4000:1"},
            {"no application", {{"Wall#1", 1}, {"Dim#2", 1}}, {{0, 0}, {1000, 1}}, "0 1000:1"},
    };
    for (const auto& [what, list, frames, expected] : cases) {
        Timeline timeline = timelineOf(list, frames);
        followFocus(timeline);
        std::string focus = std::to_string(timeline.focusedLayer);
        const std::deque<TimelineEvent>& events = timeline.events;
        for (size_t i = 0; i < events.size(); ++i) {
            if (i > 0) {
                EXPECT_LE(events[i - 1].timeNs, events[i].timeNs) << what;
            }
            if (events[i].kind != Kind::Focus) continue;
            focus += fmt::format(" {}:{}", events[i].timeNs / kMs - 5000, events[i].layer);
            EXPECT_LT(events[i - 1].timeNs, events[i].timeNs) << what;
        }
        EXPECT_EQ(focus, expected) << what;
        const auto isFrame = [](const TimelineEvent& event) { return event.kind == Kind::Frame; };
        EXPECT_EQ(std::count_if(events.begin(), events.end(), isFrame),
                  static_cast<ptrdiff_t>(frames.size()))
                << what;
    }
}

/** Two frames are queued at each vsync of 60 Hz for 5 s, from 2.5 s on by another application. */
Timeline twoApplications() {
    constexpr int32_t kPeriodNs = 16'666'666;
    Timeline timeline;
    timeline.layers = {{kAppA, 1}, {kAppB, 1}};
    timeline.events = {{kMs, Kind::Period, 0, 0, 0, kPeriodNs}};
    for (int64_t timeNs = kMs; timeNs < 5000 * kMs; timeNs += kPeriodNs) {
        const int32_t layer = timeNs < 2500 * kMs ? 0 : 1;
        timeline.events.push_back({timeNs, Kind::Frame, layer, 2, 0, 0});
        timeline.events.push_back({timeNs, Kind::CompositionBegin, 0, 0, 0, 0});
        timeline.events.push_back({timeNs, Kind::CompositionEnd, 0, 0, 0, 0});
    }
    return timeline;
}

TEST(FocusTest, AnotherApplicationIsClassifiedAndResetsTheMode) {
    const struct {
        const char* what;
        bool movesFocus;
        const char* typeOfB;
        bool isModeReset;
        bool hasLaterHints;
    } cases[] = {
            {"a target", true, "app-type.com.b=2", true, true},
            {"not a target", true, "app-type.com.b=1", true, false},
            {"the focus stays", false, "app-type.com.b=1", false, true},
    };
    constexpr int64_t kChangeNs = 2500 * kMs;
    for (const auto& c : cases) {
        Timeline timeline = twoApplications();
        if (c.movesFocus) {
            const auto next = std::find_if(
                    timeline.events.begin(), timeline.events.end(),
                    [](const TimelineEvent& event) { return event.timeNs >= kChangeNs; });
            timeline.events.insert(next, {kChangeNs, Kind::Focus, 1, 0, 0, 0});
        }
        const replay::Recording recording = replay::playIsolated(
                timeline, {"feature.5=1", "vendor.perf.pfar.enable=1",
                           "vendor.perf.brevold.debug=1", "app-type.com.a=2", c.typeOfB});
        EXPECT_EQ(std::any_of(recording.modes.begin(), recording.modes.end(),
                              [](const replay::ModeChange& mode) {
                                  return mode.timeNs > kChangeNs && mode.mode == 5;
                              }),
                  c.isModeReset)
                << c.what;
        const auto sentAfter = [&](int64_t timeNs) {
            return std::any_of(recording.hints.begin(), recording.hints.end(),
                               [&](const host::Hint& hint) { return hint.timeNs > timeNs; });
        };
        EXPECT_TRUE(sentAfter(kChangeNs - 100 * kMs)) << c.what;
        EXPECT_EQ(sentAfter(kChangeNs + 1500 * kMs), c.hasLaterHints) << c.what;
    }
}

}  // namespace
}  // namespace brevold::trace
