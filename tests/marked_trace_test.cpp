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
            "sf-90  {0}    1.0300{1}{2}B|90|x\n"
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

/** The fields of a message that are numbers or texts; those that are messages by their path. */
using Fields = std::map<std::string, std::string>;

void flatten(const std::string& path, pbf_reader message, const std::vector<std::string>& messages,
             Fields* fields) {
    while (message.next()) {
        const std::string field = path + std::to_string(message.tag());
        if (message.wire_type() == protozero::pbf_wire_type::varint) {
            (*fields)[field] = std::to_string(message.get_int64());
            continue;
        }
        const auto view = message.get_view();
        (*fields)[field] = view;
        if (std::count(messages.begin(), messages.end(), field) != 0) {
            (*fields)[field] = "";
            flatten(field + ".", pbf_reader(view), messages, fields);
        }
    }
}

/** Describes each packet; tracks are numbered in the order in which they are described. */
std::vector<std::string> describe(const std::string& packets) {
    const std::pair<const char*, const char*> labels[] = {
            {"10", "sequence "},    {"60.1", " track "},  {"60.3.1", " process "},
            {"60.4.2", " thread "}, {"60.4.1", " of "},   {"60.4.5", " named "},
            {"60.8", " counter"},   {"60.2", " named "},  {"60.5", " of track "},
            {"58", " clock "},      {"8", " at "},        {"11.11", " track "},
            {"11.9", " type "},     {"11.23", " named "}, {"11.30", " value "}};
    std::map<std::string, std::string> tracks;
    std::vector<std::string> lines;
    for (pbf_reader trace(packets); trace.next(1);) {
        Fields fields;
        flatten("", trace.get_message(), {"60", "60.3", "60.4", "60.8", "11"}, &fields);
        if (fields.count("60") != 0) {
            EXPECT_TRUE(tracks.emplace(fields["60.1"], std::to_string(tracks.size())).second);
        }
        for (const char* const track : {"60.1", "60.5", "11.11"}) {
            if (fields.count(track) != 0) fields[track] = tracks.at(fields[track]);
        }
        std::string& line = lines.emplace_back();
        for (const auto& [field, label] : labels) {
            if (fields.count(field) != 0) line += label + fields[field];
        }
    }
    return lines;
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
            {0, "sequence 8 track 0 process 90"},
            {1, "sequence 8 track 1 thread 90 of 90 named sf"},
            // The first id after those of kernels is taken.
            {2, "sequence 8 track 2 thread 4194306 of 90 named Monitor0"},
            {3, "sequence 8 track 3 thread 4194305 of 90"},
            {4, "sequence 8 track 4 thread 4194307 of 90 named hints QB"},
            {7, "sequence 8 clock 6 at 1000000000 track 3 type 1 named frame"},
            {8, "sequence 8 clock 6 at 1000000000 track 3 type 2"},
            {9, "sequence 8 clock 6 at 1000500000 track 1 type 1 named report"},
            {10, "sequence 8 clock 6 at 1000500000 track 2 type 1 named x y"},
            {13, "sequence 8 track 7 counter named hint scale x1000 of track 0"},
            {14, "sequence 8 clock 6 at 1000500001 track 7 type 4 value 282"},
            {15, "sequence 8 clock 6 at 1000500001 track 4 type 1 named DOWN 0.282"},
            {17, "sequence 8 clock 6 at 1019500001 track 7 type 4 value 0"},
            // The marks of a second replay have a sequence and tracks of their own.
            {18, "sequence 9 track 8 process 90"},
            {20, "sequence 9 track 10 thread 4194310 of 90 named Monitor0 (replayed)"},
            {21, "sequence 9 track 11 thread 4194311 of 90 named 4194305 (replayed)"},
            {22, "sequence 9 track 12 thread 4194312 of 90 named sf (replayed)"},
            {28, "sequence 9 clock 6 at 1000500000 track 12 type 1 named report"},
            {29, "sequence 9 clock 6 at 1000500000 track 10 type 1 named x y"},
            {32, "sequence 9 track 16 counter named hint scale x1000 (replayed) of track 8"},
    };
    const std::vector<std::string> lines = describe(twice.substr(packets.size()));
    EXPECT_EQ(lines.size(), 37u);
    for (const auto& [line, text] : expected)
        EXPECT_EQ(lines.at(line), text);
}

}  // namespace
}  // namespace brevold::report
