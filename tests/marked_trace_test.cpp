#include "report/marked_trace.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

#include "host/device_profile.h"
#include "replay/isolated_play.h"
#include "tests/inputs.h"
#include "tests/pages.h"
#include "trace/read_timeline.h"
#include "trace/text_mark_reader.h"

namespace brevold::report {
namespace {

const std::string kExamples = BREVOLD_EXAMPLES;

using Mark = std::tuple<int64_t, std::string, bool, std::string>;

/** Returns the trace with the marks of a recording, or of a replay if that is null. */
std::string marked(const std::string& bytes, const replay::Recording* recording = nullptr) {
    trace::TraceInput input = test::inputOf(bytes);
    trace::TraceForm form;
    const trace::Timeline timeline = trace::readTimeline(input, {}, &form);
    std::ostringstream output;
    writeTrace(input.open(), input.name(), timeline, form,
               recording == nullptr ? replay::playIsolated(timeline, {}) : *recording, output);
    return output.str();
}

/** Returns the lines that were added to a text; expects its own lines in their order. */
std::string addedTo(const std::string& text, const std::string& markedText) {
    std::istringstream original(text);
    std::istringstream output(markedText);
    std::string added;
    std::string expected;
    std::getline(original, expected);
    for (std::string line; std::getline(output, line);) {
        if (line == expected && original) {
            expected.clear();
            std::getline(original, expected);
        } else {
            added += line + '\n';
        }
    }
    EXPECT_FALSE(original) << "missing or changed line: " << expected;
    return added;
}

/** The marks of the library in added lines. `suffix` ends the names of threads and counters. */
std::vector<Mark> marksIn(const std::string& added, const std::string& suffix) {
    trace::StringSource source(added);
    trace::TextMarkReader reader(source, "added");
    std::vector<Mark> marks;
    for (trace::TraceMark mark; reader.next(&mark);) {
        std::string task = reader.form().threads.at(mark.tid);
        const bool isCounter = mark.kind == trace::TraceMark::Kind::Counter;
        std::string name(isCounter ? mark.name : task);
        const size_t end = name.size() - std::min(name.size(), suffix.size());
        EXPECT_EQ(name.substr(end), suffix);
        if (isCounter || task.rfind("hints", 0) == 0) continue;
        marks.emplace_back(mark.timeNs, task.substr(0, end),
                           mark.kind == trace::TraceMark::Kind::Begin, mark.name);
    }
    EXPECT_TRUE(reader.warnings().empty());
    return marks;
}

TEST(MarkedTraceTest, KeepsTheTraceAndAddsEveryMarkOfTheLibrary) {
    host::loadProfile(kExamples + "/everything-on.profile");
    const std::string text = test::contentOf(kExamples + "/game-120hz-falls-behind.ftrace.txt");
    trace::TraceInput input = test::inputOf(text);
    const replay::Recording recording = replay::playIsolated(trace::readTimeline(input, {}), {});
    std::vector<Mark> emitted;
    std::string caller;
    for (const replay::RecordedMark& recorded : recording.marks) {
        const host::TraceMark& mark = recorded.mark;
        // The library measures in a composition; it scales when a binder thread queues a frame.
        if (mark.isBegin) caller = mark.label[1] == 'F' ? "surfaceflinger" : "Binder:612_3";
        const std::string tasks[] = {caller, "Monitor0", "Monitor1"};
        emitted.emplace_back(mark.timeNs, tasks[mark.thread + 1], mark.isBegin, mark.label);
    }
    EXPECT_GT(emitted.size(), 1000u);
    const std::string first = marked(text);
    EXPECT_EQ(marksIn(addedTo(text, first), ""), emitted);
    // The marks of a second replay are the same, on tracks of their own.
    EXPECT_EQ(marksIn(addedTo(first, marked(first)), " (replayed)"), emitted);
}

using Kind = host::HintKind;

TEST(MarkedTraceTest, UsesTheNotationOfTheTrace) {
    const std::tuple<std::string, std::string, std::string, std::string> styles[] = {
            {" [000] ", ": 0: ", "E", ""},
            {" [000] .... ", ": print: ", "E", "00000"},
            {" (   90) [000] .... ", ": tracing_mark_write: ", "E|90", "00"},
    };
    replay::Recording recording;
    recording.hints = {
            {1'000'500'000, Kind::Down, 0, 19, 0, 0.282, 0, 0},
            {1'000'500'000, Kind::Up, 0, 19, 0, 1.5, 0, 0},
            {1'000'500'000, Kind::RefreshRate, 0, 0, 90, 0, 0, 0},
            {1'020'000'000, Kind::JankBoost, 0, 2000, 0, 10, 0, 0},
            {1'020'000'000, Kind::Release, 0, 0, 1, 0, 0, 0},
            {1'020'000'000, Kind::Down, 0, 19, 0, 0.5, 0, 0},
    };
    recording.threads = {"Monitor0"};
    recording.marks = {{{1'000'500'000, 0, true, "x y"}, 0}, {{1'000'500'000, 0, false, ""}, 0}};
    for (const auto& style : styles) {
        const auto line = [&](const char* thread, const char* time, const std::string& mark) {
            const auto& [columns, event, end, decimals] = style;
            return fmt::format("{}{}    {}{}{}{}\n", thread, columns, time, decimals, event,
                               mark == "E" ? end : mark);
        };
        // The thread of the second line has the first id that would be added.
        const std::string head = "# comment\n" +
                                 line("sf-90  ", "1.0000", "C|90|BufferTX - a#1|1") +
                                 line("app-4194305", "1.0005", "B|90|commit") + "stray\n";
        const std::string middle = line("sf-90  ", "1.0200", "C|90|BufferTX - a#1|0") +
                                   line("sf-90  ", "0.5000", "E") + line("sf-90  ", "1.0200", "E");
        const std::string last = line("sf-90  ", "1.0300", "B|90|x") + "# end\n";
        const char* kSurfaceFlinger = "              sf-90   ";
        const char* kMonitor = "        Monitor0-4194306";
        const char* kQb = "        hints QB-4194307";
        const char* kSf = "        hints SF-4194308";
        const char* kRate = "      hints rate-4194309";
        const auto counter = [&](const char* time, const char* mark) {
            return line(kSurfaceFlinger, time, std::string("C|90|hint ") + mark);
        };
        const std::string expected =
                head + line(kMonitor, "1.0005", "B|90|x y") + line(kMonitor, "1.0005", "E") +
                counter("1.0005", "scale x1000|282") + line(kQb, "1.0005", "B|90|DOWN 0.282") +
                line(kQb, "1.0005", "E") + counter("1.0005", "scale x1000|1500") +
                line(kQb, "1.0005", "B|90|UP 1.500") + counter("1.0005", "refresh rate|90") +
                line(kRate, "1.0005", "B|90|refresh-rate 90") + line(kQb, "1.0195", "E") +
                counter("1.0195", "scale x1000|0") + middle + counter("1.0200", "scale x1000|500") +
                line(kQb, "1.0200", "B|90|DOWN 0.500") + counter("1.0200", "boost|1") +
                line(kSf, "1.0200", "B|90|jank boost 10.000") + line(kSf, "1.0200", "E") +
                counter("1.0200", "boost|0") + last + line(kQb, "1.0300", "E") +
                line(kRate, "1.0300", "E");
        EXPECT_EQ(marked(head + middle + last, &recording), expected);
    }
}

TEST(MarkedTraceTest, NamesTheProcessesOfAPage) {
    const std::string text =
            "# tracer: nop\n"
            "          <...>-90    (   90) [000] .... 1.0000: print: B|90|commit\n"
            "           old-95    (   91) [000] .... 1.0000: print: C|90|BufferTX - a#1|1\n"
            "           new-95    (   91) [000] .... 1.0010: print: B|91|draw\n"
            "          main-91    (   91) [000] .... 1.0020: print: C|90|BufferTX - a#1|0\n";
    const std::string oldDump =
            "USER     PID   PPID  VSIZE  RSS   WCHAN    PC         NAME\n"
            "system    90    1     92344  7404  ffffffff 00000000 S /system/bin/surfaceflinger\n"
            "u0_a8     91    1     92344  7404  ffffffff 00000000 S com.example.app\n"
            "u0_a9     92    1     92344  7404  ffffffff 00000000 S com.example.idle\n";
    const std::string newDump =
            "USER  PID PPID  VSZ  RSS WCHAN ADDR S NAME            COMM\n"
            "system 90    1 9234 7404 0        0 S surfaceflinger  surfaceflinger\n"
            "u0_a8  91    1 9234 7404 0        0 S com.example.app com.example.app\n"
            "USER  PID TID CMD\nu0_a8  91  91 com.example.app\nu0_a8  91  95 RenderThread\n";
    replay::Recording recording;
    recording.marks = {{{1'000'000'000, -1, true, "x"}, 95}};
    for (const std::string& dump : {oldDump, newDump}) {
        const std::string output = marked(
                "<html>\n" + elementOf("PROCESS DUMP\n" + dump) + elementOf(text), &recording);
        EXPECT_EQ(addedTo(text, output),
                  "           <...>-90    (   90) [000] ....     1.0000: task_rename: pid=90 "
                  "oldcomm=<...> newcomm=surfaceflinger oom_score_adj=0\n"
                  "            main-91    (   91) [000] ....     1.0000: task_rename: pid=91 "
                  "oldcomm=main newcomm=com.example.app oom_score_adj=0\n"
                  // The thread has the name that it had last.
                  "             new-95    (   90) [000] ....     1.0000: print: B|90|x\n");
        EXPECT_EQ(output.substr(0, 14), "# tracer: nop\n");
    }
}

}  // namespace
}  // namespace brevold::report
