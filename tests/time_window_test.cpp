#include "replay/time_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

#include "host/device_profile.h"
#include "replay/isolated_play.h"
#include "report/summary_text.h"
#include "tests/inputs.h"
#include "trace/read_timeline.h"

namespace brevold::replay {
namespace {

const std::string kExamples = BREVOLD_EXAMPLES;
constexpr int64_t kMs = 1'000'000;

const double kInfinite = std::numeric_limits<double>::infinity();

TEST(TimeWindowTest, EndsWithTheTrace) {
    trace::Timeline timeline;
    timeline.startNs = 1000 * kMs;
    timeline.endNs = 3500 * kMs;
    const std::tuple<WindowOptions, int64_t, int64_t> cases[] = {
            {{{}, {}}, 1000, 3500},         {{0.25, {}}, 1250, 3500}, {{{}, 2}, 1000, 3000},
            {{2.5, kInfinite}, 3500, 3500}, {{1, 99}, 2000, 3500},
    };
    for (const auto& [options, beginMs, endMs] : cases) {
        const TimeWindow window = windowOf(timeline, options, "trace");
        EXPECT_EQ(window.beginNs, beginMs * kMs);
        EXPECT_EQ(window.endNs, endMs * kMs);
    }
    EXPECT_THROW(windowOf(timeline, {2.6, {}}, "trace"), InputError);
    EXPECT_THROW(windowOf(timeline, {kInfinite, {}}, "trace"), InputError);
}

/** The figures that add up over adjacent windows. */
std::vector<double> sumsOf(const report::Summary& summary) {
    std::vector<double> sums;
    const auto add = [&](auto... figures) { (sums.push_back(static_cast<double>(figures)), ...); };
    add(summary.windowNs(), summary.frames, summary.otherFrames, summary.compositions,
        summary.vsyncs, summary.boostVerdicts, summary.errorLines, summary.windowLines);
    const report::FrameFigures& figures = summary.frameFigures;
    add(figures.intervals, figures.missedRefreshes, figures.idleNs);
    for (const int64_t modeNs : summary.modeNs)
        add(modeNs);
    for (const int32_t frames : summary.outcomes)
        add(frames);
    for (const report::RequestSummary& request : summary.requests) {
        const auto heldNs = static_cast<double>(request.heldNs);
        add(request.count, request.count * request.meanScale, request.zeroScales, heldNs,
            heldNs * request.meanHeldScale);
    }
    return sums;
}

TEST(TimeWindowTest, FiguresOfAdjacentWindowsAddUp) {
    host::loadProfile(kExamples + "/everything-on.profile");
    for (const char* name :
         {"/game-120hz-falls-behind.ftrace.txt", "/video-30fps-gap.ftrace.txt"}) {
        trace::TraceInput input(kExamples + name);
        const trace::Timeline timeline = trace::readTimeline(input, {});
        const Recording recording = playIsolated(timeline, {});
        const auto figures = [&](int64_t beginNs, int64_t endNs) {
            return sumsOf(report::summarise("trace", timeline, recording, {beginNs, endNs}));
        };
        const std::vector<double> whole = figures(timeline.startNs, timeline.endNs);
        EXPECT_GT(whole[1], 10) << "frames";
        // Inside the DOWN hints of the first trace, and in neither case at an event.
        const int64_t middleNs = timeline.startNs + 1'030'000'001;
        const int64_t secondNs = timeline.startNs + 3'400'000'001;
        const std::vector<double> parts[] = {figures(timeline.startNs, middleNs),
                                             figures(middleNs, secondNs),
                                             figures(secondNs, timeline.endNs)};
        for (size_t i = 0; i < whole.size(); ++i) {
            EXPECT_NEAR(parts[0][i] + parts[1][i] + parts[2][i], whole[i], 1e-6 * whole[i])
                    << name << ", figure " << i;
        }
    }
}

TEST(TimeWindowTest, StartsWithTheFocusAndTheRateOfThatTime) {
    using Kind = trace::TimelineEvent::Kind;
    trace::Timeline timeline;
    timeline.layers = {{"a#1", 3}, {"b#2", 2}, {"c#3", 1}, {"d#4", 4}, {"e#5", 1}, {"f#6", 1}};
    timeline.passedOverLayer = 3;
    timeline.endNs = 1000 * kMs;
    const auto add = [&](int ms, Kind kind, int layer, int depth, int periodMs = 0) {
        timeline.events.push_back({ms * kMs, kind, layer, depth, 0, periodMs * kMs});
    };
    for (const auto& [ms, periodMs] : {std::pair(0, 10), {250, 20}, {570, 10}})
        add(ms, Kind::Period, 0, 0, periodMs);
    for (const auto& [ms, layer] : {std::pair(200, 1), {520, 0}})
        add(ms, Kind::Focus, layer, 0);
    const std::pair<int, int> frames[] = {{100, 3}, {300, 0}, {310, 1}, {360, 1}, {520, 0},
                                          {530, 0}, {540, 1}, {545, 0}, {550, 2}, {560, 4},
                                          {580, 5}, {610, 0}, {700, 3}, {701, 3}};
    for (const auto& [ms, layer] : frames) {
        add(ms, Kind::Frame, layer, 1);
        add(ms + 5, Kind::Depth, layer, 0);
    }
    std::stable_sort(timeline.events.begin(), timeline.events.end(),
                     [](const auto& a, const auto& b) { return a.timeNs < b.timeNs; });
    const report::Summary summary =
            report::summarise("trace", timeline, {}, {300 * kMs, 700 * kMs});
    std::ostringstream text;
    report::print(summary, text, report::Legend::Hidden);
    EXPECT_EQ(text.str().substr(0, text.str().find(" (from the default")),
              R"(trace         trace, 1.00 s
window        0.30 s to 0.70 s
layer         b#2, 2 frames
              then from 0.52 s a#1, 4 frames
              others: 6 frames of 6 layers
              passed over d#4: it has more frames, but is not an application's layer
most frames      5  a#1
                 3  b#2
                 1  c#3
                 1  d#4
                 1  e#5
frames        28.6 per s, interval median 15.0 ms, 95 % 65.0 ms, 99 % 65.0 ms
              missed refreshes 5, idle 0.25 s
refresh rate  50 Hz, then from 0.57 s 100 Hz)");
    EXPECT_EQ(summary.rateNs, (std::map<int64_t, int64_t>{{50, 270 * kMs}, {100, 130 * kMs}}));
}

}  // namespace
}  // namespace brevold::replay
