// Traces with the marks of a replay, as text and as Perfetto packets.

#include "report/marked_trace.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <protozero/pbf_reader.hpp>
#include <sstream>

#include "report/marked_perfetto.h"
#include "tests/inputs.h"
#include "tests/packed.h"
#include "tests/pages.h"
#include "tests/proto_writer.h"
#include "trace/perfetto_packets.h"
#include "trace/read_timeline.h"

namespace brevold::report {
namespace {

using namespace test;
using protozero::pbf_reader;
using Kind = host::HintKind;

replay::Recording exampleRecording() {
    replay::Recording recording;
    recording.hints = {
            {1'000'500'000, Kind::Down, 0, 19, 0, 0.282, 0, 0},
            {1'000'500'000, Kind::Up, 0, 19, 0, 1.5, 0, 0},
            {1'000'500'000, Kind::RefreshRate, 0, 0, 90, 0, 0, 0},
            {1'020'000'000, Kind::JankBoost, 0, 2000, 0, 10, 0, 0},
            {1'020'000'000, Kind::Down, 0, 19, 0, 0.5, 0, 0},
            {1'025'000'000, Kind::Release, 0, 0, 1, 0, 0, 0},
    };
    recording.threads = {"Monitor0"};
    recording.marks = {{{1'000'000'000, -1, true, "frame"}, 4'194'305},
                       {{1'000'000'000, -1, false, ""}, 4'194'305},
                       {{1'000'500'000, -1, true, "report"}, 0},  // on an unknown thread
                       {{1'000'500'000, 0, true, "x y"}, 0},
                       {{1'000'500'000, 0, false, ""}, 0},
                       {{1'000'500'000, -1, false, ""}, 90}};
    return recording;
}

/** Returns the trace with the marks of the recording. */
std::string marked(const std::string& bytes,
                   const replay::Recording& recording = exampleRecording()) {
    trace::TraceInput input = inputOf(bytes);
    trace::TraceForm form;
    const trace::Timeline timeline = trace::readTimeline(input, {}, &form);
    const auto write = trace::beginsAsPerfetto(rest(input.open())) ? writePerfetto : writeTrace;
    std::ostringstream output;
    write(input.open(), input.name(), timeline, form, recording, output, {});
    return output.str();
}

/** Returns all lines without the plus signs before them, and those without a plus sign. */
std::pair<std::string, std::string> textsOf(const std::string& diff) {
    std::string all;
    std::string original;
    std::istringstream lines(diff);
    for (std::string line; std::getline(lines, line);) {
        const bool isAdded = line[0] == '+';
        all += line.substr(isAdded ? 1 : 0) + '\n';
        if (!isAdded) original += line + '\n';
    }
    return {all, original};
}

TEST(MarkedTraceTest, UsesTheNotationOfTheText) {
    // The columns before the time, the decimals and the event after it, and the end of a section.
    const std::tuple<const char*, const char*, const char*, const char*> styles[] = {
            {" [000] ", "", ": 0: ", "E"},
            {" [000] .... ", "00000", ": print: ", "E"},
            {" (   90) [000] .... ", "00", ": tracing_mark_write: ", "E|90"},
    };
    // The thread of the second event has the first id that would be added.
    constexpr char kDiff[] =
            "# comment\n"
            "sf-90  {0}    1.0000{1}{2}C|90|BufferTX - a#1|1\n"
            "+             app-4194305{0}    1.0000{1}{2}B|90|frame\n"
            "+             app-4194305{0}    1.0000{1}{2}{3}\n"
            "app-4194305{0}    1.0005{1}{2}B|90|commit\n"
            "stray\n"
            "+              sf-90   {0}    1.0005{1}{2}B|90|report\n"
            "+        Monitor0-4194306{0}    1.0005{1}{2}B|90|x y\n"
            "+        Monitor0-4194306{0}    1.0005{1}{2}{3}\n"
            "+              sf-90   {0}    1.0005{1}{2}{3}\n"
            "+              sf-90   {0}    1.0005{1}{2}C|90|hint scale x1000|282\n"
            "+        hints QB-4194307{0}    1.0005{1}{2}B|90|DOWN 0.282\n"
            "+        hints QB-4194307{0}    1.0005{1}{2}{3}\n"
            "+              sf-90   {0}    1.0005{1}{2}C|90|hint scale x1000|1500\n"
            "+        hints QB-4194307{0}    1.0005{1}{2}B|90|UP 1.500\n"
            "+              sf-90   {0}    1.0005{1}{2}C|90|hint refresh rate|90\n"
            "+      hints rate-4194309{0}    1.0005{1}{2}B|90|refresh-rate 90\n"
            "+        hints QB-4194307{0}    1.0195{1}{2}{3}\n"
            "+              sf-90   {0}    1.0195{1}{2}C|90|hint scale x1000|0\n"
            "sf-90  {0}    1.0200{1}{2}C|90|BufferTX - a#1|0\n"
            "sf-90  {0}    0.5000{1}{2}{3}\n"
            "sf-90  {0}    1.0200{1}{2}{3}\n"
            "+              sf-90   {0}    1.0200{1}{2}C|90|hint scale x1000|500\n"
            "+        hints QB-4194307{0}    1.0200{1}{2}B|90|DOWN 0.500\n"
            "+              sf-90   {0}    1.0200{1}{2}C|90|hint boost|1\n"
            "+        hints SF-4194308{0}    1.0200{1}{2}B|90|jank boost 10.000\n"
            "+        hints SF-4194308{0}    1.0250{1}{2}{3}\n"
            "+              sf-90   {0}    1.0250{1}{2}C|90|hint boost|0\n"
            "sf-90  {0}    1.0300{1}: print: B|90|x\n"
            "# end\n"
            "+        hints QB-4194307{0}    1.0300{1}{2}{3}\n"
            "+      hints rate-4194309{0}    1.0300{1}{2}{3}\n";
    for (const auto& [columns, decimals, event, end] : styles) {
        const auto [expected, text] =
                textsOf(fmt::format(fmt::runtime(kDiff), columns, decimals, event, end));
        EXPECT_EQ(marked(text), expected) << event;
    }
}

TEST(MarkedTraceTest, NamesTheProcessesOfAPage) {
    const auto [expected, text] = textsOf(
            "# tracer: nop\n"
            "+           <...>-90    (   90) [000] ....     1.0000: task_rename: pid=90 "
            "oldcomm=<...> newcomm=surfaceflinger oom_score_adj=0\n"
            "+            main-91    (   91) [000] ....     1.0000: task_rename: pid=91 "
            "oldcomm=main newcomm=com.example.app oom_score_adj=0\n"
            "          <...>-90    (   90) [000] .... 1.0000: print: B|90|commit\n"
            "           old-95    (   91) [000] .... 1.0000: print: C|90|BufferTX - a#1|1\n"
            // The thread has the name that it had last.
            "+             new-95    (   90) [000] ....     1.0000: print: B|90|x\n"
            "           new-95    (   91) [000] .... 1.0010: print: B|91|draw\n"
            "          main-91    (   91) [000] .... 1.0020: print: C|90|BufferTX - a#1|0\n");
    const char* const dumps[] = {
            "USER     PID   PPID  VSIZE  RSS   WCHAN    PC         NAME\n"
            "system    90    1     92344  7404  ffffffff 00000000 S /system/bin/surfaceflinger\n"
            "u0_a8     91    1     92344  7404  ffffffff 00000000 S com.example.app\n"
            "u0_a9     92    1     92344  7404  ffffffff 00000000 S com.example.idle\n",
            "USER  PID PPID  VSZ  RSS WCHAN ADDR S NAME            COMM\n"
            "system 90    1 9234 7404 0        0 S surfaceflinger  surfaceflinger\n"
            "u0_a8  91    1 9234 7404 0        0 S com.example.app com.example.app\n"
            "USER  PID TID CMD\nu0_a8  91  91 com.example.app\nu0_a8  91  95 RenderThread\n",
    };
    replay::Recording recording;
    recording.marks = {{{1'000'000'000, -1, true, "x"}, 95}};
    for (const std::string dump : dumps) {
        const std::string page = elementOf("PROCESS DUMP\n" + dump) + elementOf(text);
        EXPECT_EQ(marked("<html>\n" + page, recording), expected) << dump;
    }
}

/** Names the fields of a packet; tracks are numbered in the order in which they are mentioned. */
std::string describe(pbf_reader message, const std::string& path,
                     std::map<std::string, size_t>& tracks) {
    // By the numbers of the field and of the messages around it, which have no label themselves.
    static const std::map<std::string, const char*> labels = {
            {"8", "at"},           {"10", "sequence"},  {"11", ""},
            {"11.9", "type"},      {"11.11", "track"},  {"11.23", "named"},
            {"11.30", "value"},    {"58", "clock"},     {"60", ""},
            {"60.1", "track"},     {"60.2", "named"},   {"60.3", ""},
            {"60.3.1", "process"}, {"60.4", ""},        {"60.4.1", "of"},
            {"60.4.2", "thread"},  {"60.4.5", "named"}, {"60.5", "of track"},
            {"60.8", "counter"},
    };
    std::string text;
    while (message.next()) {
        const std::string field = path + std::to_string(message.tag());
        const std::string label = labels.at(field);
        if (message.wire_type() == protozero::pbf_wire_type::varint) {
            std::string value = std::to_string(message.get_int64());
            if (label.find("track") != std::string::npos)
                value = std::to_string(tracks.emplace(value, tracks.size()).first->second);
            text += fmt::format("{} {}, ", label, value);
        } else if (label.empty()) {
            text += describe(message.get_message(), field + ".", tracks);
        } else {
            text += fmt::format("{} {}, ", label, message.get_string());
        }
    }
    return text;
}

TEST(MarkedTraceTest, AppendsTheMarksToWholePackets) {
    const Proto thread = Proto().number(1, 90).text(2, "sf").number(3, 90);
    const std::string packets =
            packet(Proto().message(2, Proto().message(2, thread))) +
            packet(Proto().text(99, "unknown")) +
            packet(ftraceBundle({ftraceEvent(1'000'000'000, 4'194'305, "C|90|BufferTX - a#1|1"),
                                 ftraceEvent(1'010'000'000, 90, "B|90|commit"),
                                 ftraceEvent(1'020'000'000, 90, "C|90|BufferTX - a#1|0"),
                                 ftraceEvent(1'030'000'000, 90, "E|90")}));
    replay::Recording recording = exampleRecording();
    recording.hints = {{1'000'500'001, Kind::Down, 0, 19, 0, 0.282, 0, 0}};
    const std::string once = marked(packets, recording);
    EXPECT_EQ(once.substr(0, packets.size()), packets);
    const std::string cutShort = packets + packets.substr(0, 5);
    EXPECT_EQ(marked(gzip(cutShort), recording), once);
    const std::string twice = marked(once, recording);
    EXPECT_EQ(twice.substr(0, once.size()), once);
    const std::pair<size_t, const char*> expected[] = {
            {0, "track 0, process 90, sequence 8, "},
            {1, "track 1, of 90, thread 90, named sf, sequence 8, "},
            // The first id after those of kernels is taken.
            {2, "track 2, of 90, thread 4194306, named Monitor0, sequence 8, "},
            {3, "track 3, of 90, thread 4194305, sequence 8, "},
            {4, "track 4, of 90, thread 4194307, named hints QB, sequence 8, "},
            {7, "at 1000000000, clock 6, type 1, track 3, named frame, sequence 8, "},
            {8, "at 1000000000, clock 6, type 2, track 3, sequence 8, "},
            {9, "at 1000500000, clock 6, type 1, track 1, named report, sequence 8, "},
            {10, "at 1000500000, clock 6, type 1, track 2, named x y, sequence 8, "},
            {13, "track 7, named hint scale x1000, of track 0, counter , sequence 8, "},
            {14, "at 1000500001, clock 6, type 4, track 7, value 282, sequence 8, "},
            {15, "at 1000500001, clock 6, type 1, track 4, named DOWN 0.282, sequence 8, "},
            {17, "at 1019500001, clock 6, type 4, track 7, value 0, sequence 8, "},
            // The marks of a second replay have a sequence and tracks of their own.
            {18, "track 8, process 90, sequence 9, "},
            {20, "track 10, of 90, thread 4194310, named Monitor0 (replayed), sequence 9, "},
            {21, "track 11, of 90, thread 4194311, named 4194305 (replayed), sequence 9, "},
            {22, "track 12, of 90, thread 4194312, named sf (replayed), sequence 9, "},
            {28, "at 1000500000, clock 6, type 1, track 12, named report, sequence 9, "},
            {29, "at 1000500000, clock 6, type 1, track 10, named x y, sequence 9, "},
            {32, "track 16, named hint scale x1000 (replayed), of track 8, counter , sequence 9, "},
    };
    std::map<std::string, size_t> tracks;
    std::vector<std::string> lines;
    const std::string added = twice.substr(packets.size());
    for (pbf_reader trace(added); trace.next(1);)
        lines.push_back(describe(trace.get_message(), "", tracks));
    EXPECT_EQ(lines.size(), 37u);
    for (const auto& [line, text] : expected)
        EXPECT_EQ(lines.at(line), text);
}

}  // namespace
}  // namespace brevold::report
