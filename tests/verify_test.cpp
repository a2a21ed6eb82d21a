// Labels of the library, the rule of its decisions, and cases of a few frames.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "report/marked_perfetto.h"
#include "tests/proto_writer.h"
#include "trace/read_timeline.h"
#include "trace/string_source.h"
#include "verify/decision_rule.h"
#include "verify/figure_support.h"
#include "verify/mode_evidence.h"
#include "verify/workers.h"

namespace brevold::verify {
namespace {

using trace::TimelineEvent;

constexpr int64_t kPeriodNs = 16'666'666;
constexpr int64_t kMs = 1'000'000;

const std::string kDown =
        "[DOWN_SCALING]mode \t2 \tscale \t0.624721   \theadRoom \t26325332 \tdiffQB \t16446000 "
        "\tdiffSFToQB   \t5008000 \tlastMaxQueuedFrames \t2";
const std::string kUp =
        "[UP_SCALING]mode \t4 \tscale \tinf \theadRoom \t-7333333 \tdiffQB \t1 \tdiffSFToQB "
        "\t14666666 \tlastMaxQueuedFrames \t1";

std::string replaced(std::string text, const std::string& old, const std::string& with) {
    return text.replace(text.find(old), old.size(), with);
}

/** The fields of a label, or its error. */
std::string fieldsOf(const Label& label) {
    struct Printer {
        std::string operator()(LabelError error) const {
            constexpr const char* kNames[] = {"cut", "out of range", "unknown"};
            return kNames[static_cast<size_t>(error)];
        }
        std::string operator()(const DecisionLabel& l) const {
            return fmt::format("{} {} {} {} {} {} {}",
                               l.direction == Direction::Down ? "DOWN" : "UP", l.mode, l.scale,
                               l.headroomNs, l.intervalNs, l.sinceStampNs, l.depth);
        }
        std::string operator()(const WindowLabel& l) const {
            return fmt::format("window {} {} {} {} {}", l.mode, l.fps, l.downs, l.ups, l.boosts);
        }
        std::string operator()(const RequestLabel& l) const {
            return fmt::format("request {}", l.scale);
        }
        std::string operator()(BoostLabel) const { return "boost"; }
        std::string operator()(ReleaseLabel) const { return "release"; }
    };
    return std::visit(Printer(), label);
}

TEST(LabelTest, FieldsAndErrors) {
    const std::pair<std::string, std::string> kLabels[] = {
            {kDown, "DOWN 2 0.624721 26325332 16446000 5008000 2"},
            {kUp, "UP 4 inf -7333333 1 14666666 1"},
            {"[FM]gMode:2 \tFPS:\t59.98 \tDown:\t60 \tUp:\t1   \tIdle:\t3",
             "window 2 59.98 60 1 3"},
            {"energyScaling[Scale:0.62]", "request 0.62"},
            {"energyScaling[Scale:-NAN]", "request -nan"},
            {"energyScaling[jank]", "boost"},
            {"energyScaling[jank]-rel", "release"},
            {kDown.substr(0, kDown.size() - 1), "cut"},
            {kDown.substr(0, kDown.find("26325332")), "cut"},
            {kDown.substr(0, kDown.find("Room")), "cut"},
            {"energyScaling[Scale:0.6", "cut"},
            {"[FM]gMode:", "cut"},
            {kDown + " \tmore \t1", "unknown"},
            {kDown + "x", "unknown"},
            {replaced(kDown, "0.624721", "0x1p3"), "unknown"},
            {replaced(kDown, "diffQB", "diff"), "unknown"},
            {"energyScaling[Scale:0.62]x", "unknown"},
            {"energyScaling[other]", "unknown"},
            {replaced(kDown, "26325332", "9223372036854775808"), "out of range"},
            {replaced(kDown, "\t2 ", "\t-2147483649 "), "out of range"},
            {replaced(kDown, "0.624721", std::string(65, '1')), "out of range"},
    };
    for (const auto& [text, fields] : kLabels)
        EXPECT_EQ(fieldsOf(parseLabel(text)), fields) << text;
}

TEST(DecisionRuleTest, ALabelWithOtherFiguresIsOfAnotherVersion) {
    struct Case {
        std::string label;
        bool followsRule;
    };
    const std::string kSlow =
            "[UP_SCALING]mode \t2 \tscale \t1.276596 \theadRoom \t7833333 \tdiffQB \t30000000 "
            "\tdiffSFToQB \t7833333 \tlastMaxQueuedFrames \t1";
    const Case kCases[] = {
            {kDown, true},
            {replaced(kDown, "0.624721", "0.624723"), false},
            {replaced(kDown, "26325332", "26325333"), false},  // no whole period
            {replaced(kDown, "DOWN", "UP"), false},
            {replaced(kDown, "mode \t2", "mode \t3"), false},
            {replaced(kDown, "Frames \t2", "Frames \t0"), false},
            {replaced(kDown, "5008000", "9223372036854775807"), false},
            {kSlow, true},
            {replaced(kSlow, "30000000", "20000000"), false},  // not above 1
            {kUp, true},
            {replaced(kUp, "inf", "nan"), false},
    };
    for (const Case& c : kCases) {
        const Label label = parseLabel(c.label);
        const auto* const decision = std::get_if<DecisionLabel>(&label);
        ASSERT_NE(decision, nullptr) << c.label;
        EXPECT_EQ(followsRule(*decision), c.followsRule) << c.label;
    }
}

/** Frames in the middle of each refresh period; the compositor takes none in every fourth one. */
std::vector<ExpectedFrame> framesWithPauses(int32_t count) {
    std::vector<ExpectedFrame> frames;
    for (int32_t i = 0; i < count; ++i) {
        ExpectedFrame frame = {};
        frame.stampNs = (i + 1) * kPeriodNs;
        frame.previousStampNs = i * kPeriodNs;
        frame.timeNs = frame.stampNs + 5 * kMs;
        frame.previousNs = frame.timeNs - kPeriodNs;
        frame.periodNs = kPeriodNs;
        frame.isFocused = true;
        frame.mode = 2;
        frame.depth = 2;
        frame.latchedBefore = i % 4 == 0 ? 0 : 1;
        frame.latchedAfter = 1;
        frames.push_back(frame);
    }
    return frames;
}

TEST(FigureSupportTest, TheDepthThatFitsMostLabelsIsTheCause) {
    struct Case {
        int32_t (*depthOf)(const ExpectedFrame&);
        CauseSet causes;
    };
    const Case kCases[] = {
            {[](const ExpectedFrame& frame) { return frame.depth; }, {}},
            {[](const ExpectedFrame& frame) { return frame.depth + 1; }, Cause::DepthPlusOne},
            {[](const ExpectedFrame& frame) { return frame.depth + frame.latchedBefore; },
             Cause::DepthBeforeLatch},
            {[](const ExpectedFrame& frame) { return frame.depth + 7; }, Cause::DepthOther},
    };
    const std::vector<ExpectedFrame> frames = framesWithPauses(20);
    for (const Case& c : kCases) {
        std::vector<DecisionMark> marks;
        for (const ExpectedFrame& frame : frames) {
            FrameFigures figures = frame.figures();
            figures.depth = c.depthOf(frame);
            marks.push_back({frame.timeNs, 0, *decide(figures)});
        }
        LibraryMarks recorded;
        recorded.decisions = marks;
        const Pairing pairing = pairDecisions(frames, recorded);
        const FigureSupport support(depthFigure(), frames, pairing);
        EXPECT_EQ(support.causesOf(frames[1], marks[1].label), c.causes);
    }
}

TEST(ExpectationTest, LatchesAroundFramesModesAndThreadsOfDecisions) {
    using Kind = TimelineEvent::Kind;
    trace::Timeline timeline;
    timeline.layers = {{"a", 0}, {"b", 0}};
    // Time in ms, kind, layer, depth, thread.
    timeline.events = {{0, Kind::Period, 0, 0, 0, kPeriodNs},
                       {1 * kMs, Kind::Frame, 0, 1, 1, 0},
                       {10 * kMs, Kind::CompositionBegin, 0, 0, 9, 0},
                       {11 * kMs, Kind::Depth, 0, 0, 9, 0},
                       {12 * kMs, Kind::Frame, 0, 1, 1, 0},
                       {13 * kMs, Kind::CompositionEnd, 0, 0, 9, 0},
                       {14 * kMs, Kind::Frame, 0, 2, 1, 0},
                       {15 * kMs, Kind::Frame, 1, 1, 2, 0},
                       {20 * kMs, Kind::CompositionBegin, 0, 0, 9, 0},
                       {21 * kMs, Kind::CompositionEnd, 0, 0, 9, 0},
                       {22 * kMs, Kind::Frame, 0, 3, 1, 0},
                       {169 * kMs, Kind::CompositionBegin, 0, 0, 9, 0},
                       {319 * kMs, Kind::CompositionBegin, 0, 0, 9, 0},
                       {400 * kMs, Kind::Focus, 1, 0, 9, 0},
                       {401 * kMs, Kind::Frame, 1, 0, 2, 0}};
    const Expectation expected = expect(timeline, {});
    const std::vector<ExpectedFrame>& frames = expected.frames;
    const std::pair<int32_t, int32_t> kLatches[] = {{0, 1}, {1, 0}, {1, 0}, {0, 0}, {0, 0}, {0, 0}};
    ASSERT_EQ(frames.size(), std::size(kLatches));
    for (size_t i = 0; i < frames.size(); ++i)
        EXPECT_EQ(std::make_pair(frames[i].latchedBefore, frames[i].latchedAfter), kLatches[i]);

    LibraryMarks recorded;
    recorded.windows = {{50 * kMs, {2, 60.0, 0, 0, 0}}, {350 * kMs, {3, 90.0, 0, 0, 0}}};
    const std::vector<replay::ModeChange> replayed = {{0, 4}};
    const ModeEvidence modes(recorded, replayed, expected);
    // The windows, an idle gap, and another layer in focus.
    const std::pair<int64_t, int32_t> kModes[] = {{49, 4},  {50, 2},  {318, 2}, {319, 5},
                                                  {350, 3}, {400, 3}, {401, 5}};
    for (const auto& [timeMs, mode] : kModes)
        EXPECT_EQ(modes.expectedModeAt(timeMs * kMs), mode) << timeMs;

    recorded.decisions = {{15 * kMs, 1, {}}, {15 * kMs, 3, {}}};
    const Pairing pairing = pairDecisions(frames, recorded);
    EXPECT_EQ(pairing.frames[2].recorded, &recorded.decisions[0]);
    EXPECT_EQ(pairing.frames[3].recorded, &recorded.decisions[1]);
}

/** A decision, or a section of the worker. */
struct Posted {
    int64_t timeMs;
    double scale;
    int64_t lengthMs = 0;
};

TEST(WorkersTest, RequestsBelongToTheDecisionWithTheirScale) {
    struct Case {
        std::vector<Posted> decisions;
        std::vector<Posted> requests;
        int64_t differing;
        int64_t maxHandOverMs;
        int64_t maxWaitMs = 0;
    };
    const Case kCases[] = {
            {{{10, 0.5}, {30, 0.625}}, {{11, 0.5}, {31, 0.62}}, 0, 1},
            // A newer decision replaces one that is not sent yet.
            {{{10, 0.5}, {20, 0.6}, {60, 0.7}}, {{22, 0.6}, {61, 0.7}}, 0, 12},
            {{{10, 0.5}, {30, 0.6}}, {{35, 0.6}}, 1, 25},
            {{{10, 0.5}, {30, 0.6}}, {{50, 0.5}, {70, 0.6}}, 2, 40},
            {{{10, 0.5}, {30, 0.6}}, {{11, 0.5}}, 1, 1},
            // The decision of a request may be before the trace, but not be missing later.
            {{{10, 0.5}}, {{1, 0.7}, {11, 0.5}, {40, 0.7}, {60, 0.7}}, 2, 1},
            // The request of the last one may follow after the trace.
            {{{10, 0.5}, {99, 0.6}}, {{11, 0.5}}, 0, 1},
            {{{10, std::nan("")}}, {{12, std::nan("")}}, 0, 2},
            // The second decision waits for the section of the first one.
            {{{10, 0.5}, {30, 0.6}}, {{11, 0.5, 25}, {37, 0.6, 2}}, 0, 7, 6},
    };
    for (const Case& c : kCases) {
        LibraryMarks marks;
        for (const Posted& decision : c.decisions) {
            marks.decisions.push_back({decision.timeMs * kMs, 0, {}});
            marks.decisions.back().label.scale = decision.scale;
        }
        for (const Posted& request : c.requests)
            marks.requests.push_back({request.timeMs * kMs,
                                      (request.timeMs + request.lengthMs) * kMs, request.scale});
        Differences differences(0);
        const Latencies latencies =
                checkWorkers(marks, {{}, kPeriodNs, 0, 100 * kMs, true}, &differences);
        EXPECT_EQ(differences.of(Subject::Request).differing, c.differing);
        EXPECT_EQ(latencies[static_cast<size_t>(LatencyKind::HandOver)].maxNs,
                  c.maxHandOverMs * kMs);
        EXPECT_EQ(latencies[static_cast<size_t>(LatencyKind::ReporterWait)].maxNs,
                  c.maxWaitMs * kMs);
    }
}

TEST(WorkersTest, PercentilesAreLatenciesThatOccurred) {
    std::vector<Latency> latencies;
    for (int64_t i = 1; i <= 200; ++i)
        latencies.push_back({1000 - i, i});
    latencies.push_back({5, 200});
    const LatencySummary summary = summarise(latencies);
    EXPECT_EQ(summary.medianNs, 101);
    EXPECT_EQ(summary.percentile95Ns, 191);
    EXPECT_EQ(summary.percentile99Ns, 199);
    EXPECT_EQ(summary.maxNs, 200);
    EXPECT_EQ(summary.maxAtNs, 5);
}

TEST(LibrarySectionsTest, AMarkedPerfettoTraceHasTheSections) {
    const std::string packets =
            test::packet(test::ftraceBundle({test::ftraceEvent(1000, 91, "C|90|BufferTX - a|1"),
                                             test::ftraceEvent(2000, 90, "C|90|BufferTX - a|0"),
                                             test::ftraceEvent(9000, 91, "C|90|BufferTX - a|1")}));
    trace::TraceInput input(std::make_unique<trace::StringSource>(packets), "trace");
    trace::TraceForm form;
    const trace::Timeline timeline = trace::readTimeline(input, {}, &form);
    replay::Recording recording;
    recording.threads = {"Monitor0", "Monitor1"};
    const auto add = [&](int64_t timeNs, int32_t thread, const std::string& label) {
        recording.marks.push_back({{timeNs, thread, true, label}, 91});
        recording.marks.push_back({{timeNs + 500, thread, false, ""}, 91});
    };
    add(1000, -1, kDown);
    add(1100, 1, "energyScaling[Scale:0.62]");
    std::ostringstream marked;
    report::writePerfetto(input.open(), "trace", timeline, form, recording, marked,
                          {{"differs", {{1000, 2000, "decisions: unexplained"}}}});
    EXPECT_NE(marked.str().find("decisions: unexplained"), std::string::npos);

    trace::TraceInput again(std::make_unique<trace::StringSource>(marked.str()), "trace");
    trace::LibrarySections sections;
    trace::readTimeline(again, {}, nullptr, &sections);
    const std::vector<trace::LibrarySection> taken = sections.take();
    ASSERT_EQ(taken.size(), 2u);
    EXPECT_EQ(std::tie(taken[0].beginNs, taken[0].pid, taken[0].tid, taken[0].label),
              std::make_tuple(1000, 90, 91, kDown));
    EXPECT_EQ(taken[1].label, "energyScaling[Scale:0.62]");
    EXPECT_EQ(taken[1].endNs, 1600);
}

}  // namespace
}  // namespace brevold::verify
