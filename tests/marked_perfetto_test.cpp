#include "report/marked_perfetto.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>
#include <protozero/pbf_reader.hpp>
#include <sstream>

#include "tests/gzip.h"
#include "tests/inputs.h"
#include "tests/proto_writer.h"
#include "trace/read_timeline.h"

namespace brevold::report {
namespace {

using protozero::pbf_reader;
using test::ftraceBundle;
using test::ftraceEvent;
using test::packet;
using test::Proto;

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

using Kind = host::HintKind;

replay::Recording exampleRecording() {
    replay::Recording recording;
    recording.hints = {
            {1'000'500'001, Kind::Down, 0, 19, 0, 0.282, 0, 0},
            {1'000'500'001, Kind::RefreshRate, 0, 0, 90, 0, 0, 0},
            {1'020'000'000, Kind::JankBoost, 0, 2000, 0, 10, 0, 0},
            {1'025'000'000, Kind::Release, 0, 0, 1, 0, 0, 0},
    };
    recording.threads = {"Monitor0"};
    recording.marks = {{{1'000'000'000, -1, true, "frame"}, 4'194'305},
                       {{1'000'000'000, -1, false, ""}, 4'194'305},
                       {{1'000'500'001, -1, true, "report"}, 90},
                       {{1'000'500'001, 0, true, "x y"}, 0},
                       {{1'000'500'001, 0, false, ""}, 0},
                       {{1'000'500'002, -1, false, ""}, 90}};
    return recording;
}

const std::string kPackets =
        packet(Proto().message(
                2, Proto().message(2, Proto().number(1, 90).text(2, "sf").number(3, 90)))) +
        packet(Proto().text(99, "unknown")) +
        packet(ftraceBundle({ftraceEvent(1'000'000'000, 4'194'305, "C|90|BufferTX - a#1|1"),
                             ftraceEvent(1'010'000'000, 90, "B|90|commit"),
                             ftraceEvent(1'020'000'000, 90, "C|90|BufferTX - a#1|0"),
                             ftraceEvent(1'030'000'000, 90, "E|90")}));

/** What writePerfetto() adds to the packets of a trace with these bytes. */
std::string addedTo(const std::string& bytes, const std::string& packets) {
    trace::TraceInput input = test::inputOf(bytes);
    trace::TraceForm form;
    const trace::Timeline timeline = trace::readTimeline(input, {}, &form);
    std::ostringstream output;
    writePerfetto(input.open(), input.name(), timeline, form, exampleRecording(), output);
    EXPECT_EQ(output.str().substr(0, packets.size()), packets);
    return output.str().substr(packets.size());
}

TEST(MarkedPerfettoTest, AppendsTheMarksToTheWholePackets) {
    const std::string incomplete = kPackets.substr(0, 5);
    const std::vector<std::string> expected = {
            "sequence 8 track 0 process 90",
            "sequence 8 track 1 thread 90 of 90 named sf",
            // The first id after those of kernels is taken.
            "sequence 8 track 2 thread 4194306 of 90 named Monitor0",
            "sequence 8 track 3 thread 4194305 of 90",
            "sequence 8 track 4 thread 4194307 of 90 named hints QB",
            "sequence 8 track 5 thread 4194308 of 90 named hints SF",
            "sequence 8 track 6 thread 4194309 of 90 named hints rate",
            "sequence 8 clock 6 at 1000000000 track 3 type 1 named frame",
            "sequence 8 clock 6 at 1000000000 track 3 type 2",
            "sequence 8 clock 6 at 1000500001 track 1 type 1 named report",
            "sequence 8 clock 6 at 1000500001 track 2 type 1 named x y",
            "sequence 8 clock 6 at 1000500001 track 2 type 2",
            "sequence 8 track 7 counter named hint scale x1000 of track 0",
            "sequence 8 clock 6 at 1000500001 track 7 type 4 value 282",
            "sequence 8 clock 6 at 1000500001 track 4 type 1 named DOWN 0.282",
            "sequence 8 track 8 counter named hint refresh rate of track 0",
            "sequence 8 clock 6 at 1000500001 track 8 type 4 value 90",
            "sequence 8 clock 6 at 1000500001 track 6 type 1 named refresh-rate 90",
            "sequence 8 clock 6 at 1000500002 track 1 type 2",
            "sequence 8 clock 6 at 1019500001 track 4 type 2",
            "sequence 8 clock 6 at 1019500001 track 7 type 4 value 0",
            "sequence 8 track 9 counter named hint boost of track 0",
            "sequence 8 clock 6 at 1020000000 track 9 type 4 value 1",
            "sequence 8 clock 6 at 1020000000 track 5 type 1 named jank boost 10.000",
            "sequence 8 clock 6 at 1025000000 track 5 type 2",
            "sequence 8 clock 6 at 1025000000 track 9 type 4 value 0",
            "sequence 8 clock 6 at 1030000000 track 6 type 2",
    };
    EXPECT_EQ(describe(addedTo(kPackets, kPackets)), expected);
    EXPECT_EQ(describe(addedTo(gzip(kPackets + incomplete), kPackets)), expected);
}

TEST(MarkedPerfettoTest, KeepsApartTheMarksOfTwoReplays) {
    const std::string first = addedTo(kPackets, kPackets);
    const std::string second = addedTo(kPackets + first, kPackets + first);
    // Each descriptor gives a track that no other has, and the events find theirs.
    const std::vector<std::string> lines = describe(first + second);
    ASSERT_EQ(lines.size(), 55u);
    const std::pair<size_t, const char*> expected[] = {
            {27, "track 10 process 90"},
            {28, "track 11 thread 90 of 90 named sf"},
            {29, "track 12 thread 4194310 of 90 named Monitor0 (replayed)"},
            {30, "track 13 thread 4194311 of 90 named 4194305 (replayed)"},
            {31, "track 14 thread 4194312 of 90 named sf (replayed)"},
            {37, "clock 6 at 1000500001 track 14 type 1 named report"},
            {38, "clock 6 at 1000500001 track 12 type 1 named x y"},
            {40, "track 18 counter named hint scale x1000 (replayed) of track 10"},
    };
    for (const auto& [line, text] : expected)
        EXPECT_EQ(lines[line], std::string("sequence 9 ") + text);
}

}  // namespace
}  // namespace brevold::report
