// Labels of the library, the rule of its decisions, and cases of a few frames.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <sstream>

#include "report/marked_perfetto.h"
#include "tests/inputs.h"
#include "tests/proto_writer.h"
#include "verify/cause_finder.h"
#include "verify/decision_rule.h"
#include "verify/figure_support.h"
#include "verify/mode_evidence.h"
#include "verify/workers.h"

namespace brevold::verify {
namespace {

constexpr int64_t kMs = 1'000'000;
constexpr int64_t kPeriodNs = 16'666'666;

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
            return std::array{"cut", "out of range", "unknown"}[static_cast<size_t>(error)];
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
            {replaced(kDown, "0.624721", std::string(64, '0')),
             "DOWN 2 0 26325332 16446000 5008000 2"},
            {replaced(kDown, "0.624721", std::string(65, '0')), "out of range"},
    };
    for (const auto& [text, fields] : kLabels)
        EXPECT_EQ(fieldsOf(parseLabel(text)), fields) << text;
}

TEST(DecisionRuleTest, ALabelWithOtherFiguresIsOfAnotherVersion) {
    const std::string kSlow =
            "[UP_SCALING]mode \t2 \tscale \t1.276596 \theadRoom \t7833333 \tdiffQB \t30000000 "
            "\tdiffSFToQB \t7833333 \tlastMaxQueuedFrames \t1";
    const std::pair<std::string, bool> cases[] = {
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
    for (const auto& [label, isRule] : cases)
        EXPECT_EQ(followsRule(std::get<DecisionLabel>(parseLabel(label))), isRule) << label;
}

/** Frames in the middle of each refresh period; the compositor takes none in every fourth one. */
std::vector<ExpectedFrame> framesWithPauses(int32_t count) {
    std::vector<ExpectedFrame> frames(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        ExpectedFrame& frame = frames[static_cast<size_t>(i)];
        frame.stampNs = (i + 1) * kPeriodNs;
        frame.previousStampNs = i * kPeriodNs;
        frame.timeNs = frame.stampNs + 5 * kMs;
        frame.previousNs = frame.timeNs - kPeriodNs;
        frame.periodNs = kPeriodNs;
        frame.isFocused = true;
        frame.mode = frame.depth = 2;
        frame.latchedBefore = i % 4 == 0 ? 0 : 1;
        frame.latchedAfter = 1;
    }
    return frames;
}

TEST(FigureSupportTest, TheDepthThatFitsMostLabelsIsTheCause) {
    // The depth added to all frames, and to those that a latch precedes.
    const std::tuple<int32_t, int32_t, CauseSet> cases[] = {
            {0, 0, {}},
            {1, 0, Cause::DepthPlusOne},
            {0, 1, Cause::DepthBeforeLatch},
            {7, 0, Cause::DepthOther},
    };
    const std::vector<ExpectedFrame> frames = framesWithPauses(20);
    for (const auto& [added, addedAfterLatch, causes] : cases) {
        LibraryMarks recorded;
        for (const ExpectedFrame& frame : frames) {
            FrameFigures figures = frame.figures();
            figures.depth += added + addedAfterLatch * frame.latchedBefore;
            recorded.decisions.push_back({frame.timeNs, 0, *decide(figures)});
        }
        const Pairing pairing = pairDecisions(frames, recorded);
        const FigureSupport support(depthFigure(), frames, pairing);
        EXPECT_EQ(support.causesOf(frames[1], recorded.decisions[1].label), causes);
    }
}

TEST(CauseFinderTest, OneDecisionThatDiffersShowsItsCause) {
    constexpr size_t kFrame = 10;
    using Edit = std::function<void(ExpectedFrame&, FrameFigures&)>;
    const auto addInterval = [](int64_t ns) {
        return [ns](ExpectedFrame&, FrameFigures& figures) { figures.intervalNs += ns; };
    };
    const auto usePeriod = [](int64_t ns) {
        return [ns](ExpectedFrame&, FrameFigures& figures) {
            figures.periodNs = ns;
            figures.mode = ns == kPeriodNs / 2 ? 4 : 2;
        };
    };
    const std::tuple<const char*, Edit, CauseSet> cases[] = {
            {"unfocused", [](ExpectedFrame& frame, auto&) { frame.isFocused = false; },
             Cause::OtherLayer},
            {"mode", [](ExpectedFrame& frame, auto&) { frame.mode = 5; }, Cause::TickRate},
            {"period of 120 Hz", usePeriod(kPeriodNs / 2), Cause::PeriodOfOtherDisplay},
            {"interval of two frames", addInterval(kPeriodNs), Cause::NotReported},
            {"interval within the tolerance of two frames", addInterval(kPeriodNs + kMs),
             Cause::NotReported},
            {"interval of no frame", addInterval(3 * kMs), Cause::QueueTimes},
            {"interval of 1 ms", addInterval(kMs - kPeriodNs), Cause::ReportedTwice},
            {"interval within the tolerance", addInterval(kMs), Cause::QueueTimes},
            {"since the stamp", [](auto&, FrameFigures& figures) { figures.sinceStampNs += kMs; },
             Cause::QueueTimes},
            {"depth", [](auto&, FrameFigures& figures) { figures.depth += 3; }, Cause::DepthOther},
    };
    for (const auto& [name, edit, causes] : cases) {
        std::vector<ExpectedFrame> frames = framesWithPauses(20);
        LibraryMarks recorded;
        for (size_t i = 0; i < frames.size(); ++i) {
            FrameFigures figures = frames[i].figures();
            if (i == kFrame) edit(frames[i], figures);
            frames[i].decision = decide(frames[i].figures());
            if (const auto label = decide(figures)) {
                recorded.decisions.push_back({frames[i].timeNs, 0, *label});
            }
        }
        const Pairing pairing = pairDecisions(frames, recorded);
        const Expectation expected = {};
        const std::vector<replay::ModeChange> replayed;
        const std::vector<int64_t> boostsNs;
        const ModeEvidence modes(recorded, replayed, expected);
        const CauseFinder finder(frames, pairing, modes, boostsNs);
        EXPECT_EQ(finder.ofFrame(kFrame), causes) << name;
    }
}

TEST(ExpectationTest, LatchesAroundFramesModesAndThreadsOfDecisions) {
    using Kind = trace::TimelineEvent::Kind;
    constexpr auto kBegin = Kind::CompositionBegin;
    constexpr auto kEnd = Kind::CompositionEnd;
    trace::Timeline timeline;
    timeline.layers = {{"a", 0}, {"b", 0}};
    timeline.events = {{0, Kind::Period, 0, 0, 0, kPeriodNs}};
    // Time in ms, kind, layer, depth, thread.
    const std::tuple<int64_t, Kind, int32_t, int32_t, int32_t> events[] = {
            {1, Kind::Frame, 0, 1, 1},   {10, kBegin, 0, 0, 9},      {11, Kind::Depth, 0, 0, 9},
            {12, Kind::Frame, 0, 1, 1},  {13, kEnd, 0, 0, 9},        {14, Kind::Frame, 0, 2, 1},
            {15, Kind::Frame, 1, 1, 2},  {20, kBegin, 0, 0, 9},      {21, kEnd, 0, 0, 9},
            {22, Kind::Frame, 0, 3, 1},  {169, kBegin, 0, 0, 9},     {319, kBegin, 0, 0, 9},
            {400, Kind::Focus, 1, 0, 9}, {401, Kind::Frame, 1, 0, 2}};
    for (const auto& [timeMs, kind, layer, depth, tid] : events)
        timeline.events.push_back({timeMs * kMs, kind, layer, depth, tid, 0});
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

    recorded.decisions = {{15 * kMs, 1, {}}, {15 * kMs, 3, {}}, {401 * kMs + kPeriodNs, 2, {}}};
    const Pairing pairing = pairDecisions(frames, recorded);
    const size_t kPaired[] = {2, 3, 5};
    for (size_t i = 0; i < std::size(kPaired); ++i)
        EXPECT_EQ(pairing.frames[kPaired[i]].recorded, &recorded.decisions[i]);
}

TEST(DifferencesTest, OnlyDecisionsAndBoostsOfTheFirstWindowsAreEarly) {
    Differences differences(kMs);
    for (const Subject subject : {Subject::Decision, Subject::Boost, Subject::Request}) {
        differences.add(subject, kMs, {});
        differences.add(subject, kMs + 1, {});
        EXPECT_EQ(differences.of(subject).verdictDiffering, subject == Subject::Request ? 2 : 1);
    }
}

TEST(WorkersTest, RequestsBelongToTheDecisionWithTheirScale) {
    /** A decision, or a section of the worker. */
    struct Posted {
        int64_t timeMs;
        double scale;
        int64_t lengthMs = 0;
    };
    const struct {
        std::vector<Posted> decisions;
        std::vector<Posted> requests;
        int64_t differing;
        int64_t maxHandOverMs;
        int64_t maxWaitMs = 0;
    } kCases[] = {
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
    for (const auto& c : kCases) {
        LibraryMarks marks;
        for (const auto& [timeMs, scale, lengthMs] : c.decisions)
            marks.decisions.push_back({timeMs * kMs, 0, {Direction::Down, 2, scale, 0, 0, 0, 0}});
        for (const auto& [timeMs, scale, lengthMs] : c.requests)
            marks.requests.push_back({timeMs * kMs, (timeMs + lengthMs) * kMs, scale});
        Differences differences(0);
        const Latencies latencies =
                checkWorkers(marks, {{}, kPeriodNs, 0, 100 * kMs, true}, &differences);
        EXPECT_EQ(differences.of(Subject::Request).differing, c.differing);
        const auto maxMs = [&](LatencyKind kind) {
            return latencies[static_cast<size_t>(kind)].maxNs / kMs;
        };
        EXPECT_EQ(maxMs(LatencyKind::HandOver), c.maxHandOverMs);
        EXPECT_EQ(maxMs(LatencyKind::ReporterWait), c.maxWaitMs);
    }
}

TEST(LibrarySectionsTest, AMarkedPerfettoTraceHasTheSections) {
    const std::string mark = "C|90|BufferTX - a|";
    trace::TraceInput input = test::inputOf(test::packet(test::ftraceBundle(
            {test::ftraceEvent(1000, 91, mark + "1"), test::ftraceEvent(2000, 90, mark + "0"),
             test::ftraceEvent(9000, 91, mark + "1")})));
    trace::TraceForm form;
    const trace::Timeline timeline = trace::readTimeline(input, {}, &form);
    replay::Recording recording;
    recording.threads = {"Monitor0", "Monitor1"};
    recording.marks = {{{1000, -1, true, kDown}, 91},
                       {{1500, -1, false, ""}, 91},
                       {{1100, 1, true, "energyScaling[Scale:0.62]"}, 91},
                       {{1600, 1, false, ""}, 91}};
    std::ostringstream marked;
    report::writePerfetto(input.open(), "trace", timeline, form, recording, marked,
                          {{"differs", {{1000, 2000, "decisions: unexplained"}}}});
    EXPECT_NE(marked.str().find("decisions: unexplained"), std::string::npos);

    trace::TraceInput again = test::inputOf(marked.str());
    trace::LibrarySections sections;
    trace::readTimeline(again, {}, nullptr, &sections);
    std::string text;
    for (const trace::LibrarySection& each : sections.take())
        text += fmt::format("{} {} {} to {} {}\n", each.pid, each.tid, each.beginNs,
                            each.endNs.value_or(0), each.label);
    EXPECT_EQ(text, "90 91 1000 to 1500 " + kDown +
                            "\n90 4194306 1100 to 1600 energyScaling[Scale:0.62]\n");
}

}  // namespace
}  // namespace brevold::verify
