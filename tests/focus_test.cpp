// Which layer has the focus, and how the focus moves in time.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/inputs.h"
#include "trace/focused_layer.h"

namespace brevold::trace {
namespace {

using Kind = TimelineEvent::Kind;

constexpr int64_t kMs = 1'000'000;
const std::string kAppA = "com.a/com.a.Main#7";
const std::string kAppB = "SurfaceView - com.b/.Main#8";

TEST(FocusTest, RecognisesApplicationsByTheirNames) {
    for (const char* name :
         {"com.example.app/com.example.app.Main#12", "com.example/.Main",
          "d9c3ab0 com.example.app/com.example.app.Main#12",
          "SurfaceView - com.example_2.app/com.example.Main#0",
          "SurfaceView[com.example/com.example.Main](BLAST)#17", "a/b com.example/_Main#1"})
        EXPECT_TRUE(isApplicationLayer(name)) << name;
    for (const char* name :
         {"bbq-wrapper#2", "Splash Screen com.example.app#1595", "example/com.example.Main#1",
          "com.2example/com.example.Main#1", "com..example/com.example.Main#1",
          ".example/com.example.Main#1", "Surface(name=com.example)/@0x1f - leash#3",
          "com.example/@0x1f#3", "com.example/", "/"})
        EXPECT_FALSE(isApplicationLayer(name)) << name;
}

TEST(FocusTest, FindsTheLayerToFocus) {
    const std::vector<Layer> idle = {{kAppA, 0}};
    const std::vector<Layer> system = {{"Wall#1", 7}, {"StatusBar#0", 9}, {"Dim#2", 9}};
    const std::vector<Layer> all = {{"StatusBar#0", 50}, {kAppA, 20},    {kAppB, 30},
                                    {"Wall#1", 60},      {"Wall#12", 1}, {"com.a/com.a.Old#3", 0}};
    const std::string twoApps = "'" + kAppA + "', '" + kAppB + "'";
    using Layers = std::vector<Layer>;
    using Name = std::optional<std::string>;
    const std::tuple<const char*, Layers, Name, std::string> cases[] = {
            {"the application with the most frames", all, {}, kAppB + " before Wall#1"},
            {"no application", system, {}, "StatusBar#0"},
            {"as many frames as another", {{"Wall#1", 3}, {kAppA, 3}}, {}, kAppA},
            {"a whole name", all, "Wall#1", "Wall#1"},
            {"a name without its number", all, "StatusBar", "StatusBar#0"},
            {"a number other than 0", all, "com.a/com.a.Main", kAppA},
            {"a part", all, "com.b", kAppB},
            {"a name that fits two numbers", all, "Wall",
             "trace: several layers match 'Wall': 'Wall#1', 'Wall#12'"},
            {"a part of two", all, ".Main", "trace: several layers match '.Main': " + twoApps},
            {"a layer without frames", all, "com.a/com.a.Old",
             "trace: no layer 'com.a/com.a.Old' has frames; the closest names are " + twoApps +
                     ", 'StatusBar#0'"},
            {"no frames",
             idle,
             {},
             "trace: no layer has frames; record the trace with graphics events"},
    };
    for (const auto& [what, layers, name, expected] : cases) {
        std::string result;
        const std::string error = test::errorOf([&, &list = layers, &part = name] {
            const FocusedLayer focused = findFocusedLayer(list, part, "trace");
            result = list[focused.layer].name;
            if (focused.passedOver) result += " before " + list[*focused.passedOver].name;
        });
        EXPECT_EQ(result + error, expected) << what;
    }
}

TEST(FocusTest, FollowsTheLayerWithTheMostFramesInEachSecond) {
    const std::vector<Layer> layers = {{"Wall#1", 1}, {kAppA, 1}, {kAppB, 1}};
    const std::vector<Layer> noApplication = {{"Wall#1", 1}, {"Dim#2", 1}};
    // Frames as time in ms and layer; the focus first and where it moves.
    const std::tuple<const char*, const char*, const std::vector<Layer>&, const char*> cases[] = {
            {"one second", "0:1 10:2 20:2", layers, "2"},
            {"a change at its start", "100:1 998:1 999:2 1000:2 1001:2", layers, "1 1000:2"},
            {"a tie keeps the focus", "0:2 1500:1 1600:2", layers, "2"},
            {"other layers", "0:1 2000:0 2100:0 2200:0 2300:2 4000:1", layers, "1 2000:2 4000:1"},
            {"idle seconds keep the focus", "0:1 5000:0 7000:1", layers, "1"},
            {"no frames at first", "0:0 3000:2 4000:1", layers, "2 4000:1"},
            {"no application", "0:0 1000:1", noApplication, "0 1000:1"},
    };
    for (const auto& [what, frames, list, expected] : cases) {
        Timeline timeline;
        timeline.layers = list;
        timeline.startNs = 5000 * kMs;
        std::istringstream input(frames);
        char colon;
        for (int ms, layer; input >> ms >> colon >> layer;)
            timeline.events.push_back({(5000 + ms) * kMs, Kind::Frame, layer, 1, 0, 0});
        timeline.endNs = timeline.events.back().timeNs;
        const size_t frameCount = timeline.events.size();
        followFocus(timeline);
        std::string focus = std::to_string(timeline.focusedLayer);
        size_t changes = 0;
        int64_t lastNs = 0;
        for (const TimelineEvent& event : timeline.events) {
            const bool isChange = event.kind == Kind::Focus;
            EXPECT_LE(lastNs + (isChange ? 1 : 0), event.timeNs) << what;
            lastNs = event.timeNs;
            if (!isChange) continue;
            ++changes;
            focus += fmt::format(" {}:{}", event.timeNs / kMs - 5000, event.layer);
        }
        EXPECT_EQ(focus, expected) << what;
        EXPECT_EQ(timeline.events.size(), frameCount + changes) << what;
    }
}

}  // namespace
}  // namespace brevold::trace
