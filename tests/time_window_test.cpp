#include "replay/time_window.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/device_profile.h"
#include "replay/isolated_play.h"
#include "report/summary.h"
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
    std::vector<double> sums = {static_cast<double>(summary.windowNs())};
    for (const int32_t count : {summary.frames, summary.otherFrames, summary.compositions,
                                summary.vsyncs, summary.boostVerdicts, summary.errorLines,
                                summary.windowLines, summary.frameFigures.intervals,
                                static_cast<int32_t>(summary.frameFigures.missedRefreshes)})
        sums.push_back(count);
    sums.push_back(static_cast<double>(summary.frameFigures.idleNs));
    for (const int64_t modeNs : summary.modeNs)
        sums.push_back(static_cast<double>(modeNs));
    sums.insert(sums.end(), summary.outcomes.begin(), summary.outcomes.end());
    for (const report::RequestSummary& request : summary.requests) {
        sums.push_back(request.count);
        sums.push_back(request.count * request.meanScale);
        sums.push_back(request.zeroScales);
        sums.push_back(static_cast<double>(request.heldNs));
        sums.push_back(static_cast<double>(request.heldNs) * request.meanHeldScale);
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
    timeline.events = {{0, Kind::Period, 0, 0, 0, 10 * kMs},
                       {200 * kMs, Kind::Focus, 1, 0, 0, 0},
                       {250 * kMs, Kind::Period, 0, 0, 0, 20 * kMs},
                       {520 * kMs, Kind::Focus, 0, 0, 0, 0},
                       {570 * kMs, Kind::Period, 0, 0, 0, 10 * kMs}};
    const std::pair<int, int> frames[] = {{100, 3}, {300, 0}, {310, 1}, {360, 1}, {520, 0},
                                          {530, 0}, {540, 1}, {545, 0}, {550, 2}, {560, 4},
                                          {580, 5}, {610, 0}, {700, 3}, {701, 3}};
    for (const auto& [ms, layer] : frames) {
        timeline.events.push_back({ms * kMs, Kind::Frame, layer, 1, 0, 0});
        timeline.events.push_back({(ms + 5) * kMs, Kind::Depth, layer, 0, 0, 0});
    }
    std::stable_sort(timeline.events.begin(), timeline.events.end(),
                     [](const auto& a, const auto& b) { return a.timeNs < b.timeNs; });
    const report::Summary summary =
            report::summarise("trace", timeline, {}, {300 * kMs, 700 * kMs});
    std::string text = fmt::format("{} frames, {} other frames of {} layers, {} was passed over\n",
                                   summary.frames, summary.otherFrames, summary.otherLayers,
                                   summary.passedOverLayer.value_or("none"));
    const report::FrameFigures& figures = summary.frameFigures;
    text += fmt::format("{} intervals, {:.2f} Hz, median {}, 95 % {}, {} missed, idle {}\n",
                        figures.intervals, figures.meanRateHz, figures.medianNs / kMs,
                        figures.p95Ns / kMs, figures.missedRefreshes, figures.idleNs / kMs);
    for (const auto& focus : summary.focuses)
        text += fmt::format("{} from {}: {} frames\n", focus.layer, focus.fromNs / kMs,
                            focus.frames);
    for (const auto& rate : summary.rates)
        text += fmt::format("{} Hz from {}\n", rate.hz, rate.fromNs / kMs);
    for (const auto& [hz, ns] : summary.rateNs)
        text += fmt::format("{} Hz for {}\n", hz, ns / kMs);
    for (const auto& layer : summary.topLayers)
        text += fmt::format("{}*{} ", layer.layer, layer.frames);
    EXPECT_EQ(text,
              "6 frames, 6 other frames of 6 layers, d#4 was passed over\n"
              "4 intervals, 28.57 Hz, median 15, 95 % 65, 5 missed, idle 250\n"
              "b#2 from 300: 2 frames\na#1 from 520: 4 frames\n"
              "50 Hz from 300\n100 Hz from 570\n50 Hz for 270\n100 Hz for 130\n"
              "a#1*5 b#2*3 c#3*1 d#4*1 e#5*1 ");
}

}  // namespace
}  // namespace brevold::replay
