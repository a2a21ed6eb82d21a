#include "report/marked_perfetto.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>
#include <protozero/pbf_reader.hpp>
#include <sstream>

#include "tests/gzip.h"
#include "tests/proto_writer.h"
#include "trace/read_timeline.h"
#include "trace/string_source.h"

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
    std::map<std::string, size_t> tracks;
    std::vector<std::string> lines;
    pbf_reader trace(packets);
    while (trace.next(1)) {
        Fields fields;
        flatten("", trace.get_message(), {"60", "60.3", "60.4", "60.8", "11"}, &fields);
        std::string line = "sequence " + fields["10"];
        if (fields.count("60") != 0) {
            const size_t number = tracks.size();
            EXPECT_TRUE(tracks.emplace(fields["60.1"], number).second);
            line += fmt::format(" track {}", number);
            if (fields.count("60.3") != 0) line += " process " + fields["60.3.1"];
            if (fields.count("60.4") != 0) {
                line += fmt::format(" thread {} of {} '{}'", fields["60.4.2"], fields["60.4.1"],
                                    fields["60.4.5"]);
            }
            if (fields.count("60.8") != 0) {
                line += fmt::format(" counter '{}' of track {}", fields["60.2"],
                                    tracks.at(fields["60.5"]));
            }
        } else {
            line += fmt::format(" clock {} {} track {} type {} '{}{}'", fields["58"], fields["8"],
                                tracks.at(fields["11.11"]), fields["11.9"], fields["11.23"],
                                fields["11.30"]);
        }
        lines.push_back(line);
    }
    return lines;
}

host::Hint hintAt(int64_t timeNs, host::HintKind kind, int32_t durationMs, uint32_t type,
                  double scale) {
    return {timeNs, kind, 0, durationMs, type, scale, 0, 0};
}

replay::Recording exampleRecording() {
    replay::Recording recording;
    recording.hints = {
            hintAt(1'000'500'001, host::HintKind::Down, 19, 0, 0.282),
            hintAt(1'000'500'001, host::HintKind::RefreshRate, 0, 90, 0),
            hintAt(1'020'000'000, host::HintKind::JankBoost, 2000, 0, 10),
            hintAt(1'025'000'000, host::HintKind::Release, 0, 1, 0),
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
    trace::TraceInput input(std::make_unique<trace::StringSource>(bytes), "trace");
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
            "sequence 8 track 1 thread 90 of 90 'sf'",
            // The first id after those of kernels is taken.
            "sequence 8 track 2 thread 4194306 of 90 'Monitor0'",
            "sequence 8 track 3 thread 4194305 of 90 ''",
            "sequence 8 track 4 thread 4194307 of 90 'hints QB'",
            "sequence 8 track 5 thread 4194308 of 90 'hints SF'",
            "sequence 8 track 6 thread 4194309 of 90 'hints rate'",
            "sequence 8 clock 6 1000000000 track 3 type 1 'frame'",
            "sequence 8 clock 6 1000000000 track 3 type 2 ''",
            "sequence 8 clock 6 1000500001 track 1 type 1 'report'",
            "sequence 8 clock 6 1000500001 track 2 type 1 'x y'",
            "sequence 8 clock 6 1000500001 track 2 type 2 ''",
            "sequence 8 track 7 counter 'hint scale x1000' of track 0",
            "sequence 8 clock 6 1000500001 track 7 type 4 '282'",
            "sequence 8 clock 6 1000500001 track 4 type 1 'DOWN 0.282'",
            "sequence 8 track 8 counter 'hint refresh rate' of track 0",
            "sequence 8 clock 6 1000500001 track 8 type 4 '90'",
            "sequence 8 clock 6 1000500001 track 6 type 1 'refresh-rate 90'",
            "sequence 8 clock 6 1000500002 track 1 type 2 ''",
            "sequence 8 clock 6 1019500001 track 4 type 2 ''",
            "sequence 8 clock 6 1019500001 track 7 type 4 '0'",
            "sequence 8 track 9 counter 'hint boost' of track 0",
            "sequence 8 clock 6 1020000000 track 9 type 4 '1'",
            "sequence 8 clock 6 1020000000 track 5 type 1 'jank boost 10.000'",
            "sequence 8 clock 6 1025000000 track 5 type 2 ''",
            "sequence 8 clock 6 1025000000 track 9 type 4 '0'",
            "sequence 8 clock 6 1030000000 track 6 type 2 ''",
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
    EXPECT_EQ(lines[27], "sequence 9 track 10 process 90");
    EXPECT_EQ(lines[28], "sequence 9 track 11 thread 90 of 90 'sf'");
    EXPECT_EQ(lines[29], "sequence 9 track 12 thread 4194310 of 90 'Monitor0 (replayed)'");
    EXPECT_EQ(lines[30], "sequence 9 track 13 thread 4194311 of 90 '4194305 (replayed)'");
    EXPECT_EQ(lines[31], "sequence 9 track 14 thread 4194312 of 90 'sf (replayed)'");
    EXPECT_EQ(lines[37], "sequence 9 clock 6 1000500001 track 14 type 1 'report'");
    EXPECT_EQ(lines[38], "sequence 9 clock 6 1000500001 track 12 type 1 'x y'");
    EXPECT_EQ(lines[40], "sequence 9 track 18 counter 'hint scale x1000 (replayed)' of track 10");
}

}  // namespace
}  // namespace brevold::report
