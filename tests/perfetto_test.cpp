// From the bytes of a Perfetto trace to a timeline: the same as from the text of that trace.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "base/text.h"
#include "report/summary_json.h"
#include "report/summary_text.h"
#include "tests/inputs.h"
#include "tests/packed.h"
#include "tests/proto_writer.h"
#include "trace/event_line.h"
#include "trace/expansion_limit.h"
#include "trace/perfetto_packets.h"

namespace brevold::trace {
namespace {

using namespace test;
using Texts = std::vector<std::string>;

/**
 * The packets of a text trace, with two processors whose bundles overlap: the bundle of the second
 * one comes first and has half of the threads. The clock of the events starts `delayNs` after boot
 * time; `rest` ends each bundle.
 */
Texts packetsOf(const std::string& text, uint64_t delayNs = 0, const Proto& rest = {}) {
    constexpr size_t kBundleEvents = 50;
    Texts packets;
    std::vector<Proto> events[2];
    const auto flush = [&] {
        for (const int processor : {1, 0}) {
            packets.push_back(packet(ftraceBundle(events[processor], rest)));
            events[processor].clear();
        }
    };
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        EventLine event;
        if (!parseEventLine(line, &event)) continue;
        takeUntil(':', &event.event);
        const auto timeNs = static_cast<uint64_t>(event.timeNs) - delayNs;
        std::vector<Proto>& processor = events[event.tid % 2];
        processor.push_back(ftraceEvent(timeNs, event.tid, std::string(trimStart(event.event))));
        processor.push_back(ftraceEvent(timeNs, 0, ""));
        if (processor.size() > kBundleEvents) flush();
    }
    flush();
    return packets;
}

std::string join(const Texts& packets) {
    return fmt::format("{}", fmt::join(packets, ""));
}

TEST(PerfettoTest, EqualsTheTextOfTheSameTrace) {
    constexpr uint64_t kDelayNs = 100'000'000'000;
    const Proto globalClock = Proto().number(5, 2).number(6, 5'000).number(7, kDelayNs + 5'000);
    const std::string skipped =
            packet(Proto().text(33, "configuration").number(13, 1)) +
            packet(Proto().message(11, Proto().number(9, 1)).number(8, 1).number(58, 6)) +
            packet(ftraceBundle({}, Proto().message(4, Proto().text(1, "compact"))));
    for (const std::string name : {"game-120hz-falls-behind.ftrace.txt",
                                   "game-60hz-headroom.ftrace.txt", "video-30fps-gap.ftrace.txt"}) {
        const std::string text = contentOf(BREVOLD_EXAMPLES "/" + name);
        const Texts packets = packetsOf(text);
        const std::string bytes = join(packets);
        Texts reversed(packets.rbegin(), packets.rend());
        std::string compressed;
        for (const std::string& one : packets)
            compressed += packet(compressedPackets(skipped + one));
        const std::pair<const char*, std::string> forms[] = {
                {"plain", bytes},
                {"other packets", skipped + bytes + skipped},
                {"reversed", join(reversed)},
                {"compressed", compressed},
                {"gzip", gzip(bytes)},
                {"zip", zipOf({{"a", bytes}})},
                {"global clock", join(packetsOf(text, kDelayNs, globalClock))},
                {"raw clock", packet(clockSnapshot(5, 1'000, kDelayNs + 1'000)) +
                                      join(packetsOf(text, kDelayNs, Proto().number(5, 4)))},
        };
        const std::string expected = describe(read(text));
        for (const auto& [form, trace] : forms) {
            const Timeline timeline = read(trace);
            EXPECT_EQ(describe(timeline), expected) << name << ", " << form;
            EXPECT_TRUE(timeline.warnings.empty()) << name << ", " << form;
        }
        for (const size_t maxRead : {1u, 7u, 64u})
            EXPECT_EQ(describe(read(bytes, {}, maxRead)), expected) << name << ", " << maxRead;
    }
}

const std::string kCounter = "C|90|BufferTX - com.example/com.example.Main#7|";

Proto depthAt(uint64_t timeNs, int depth) {
    return ftraceEvent(timeNs, depth == 0 ? 90 : 91, kCounter + std::to_string(depth));
}

/** Two frames of a layer, queued and latched on a compositor's threads. */
std::vector<Proto> frames() {
    return {depthAt(1'000'000'000, 1), ftraceEvent(1'005'000'000, 90, "B|90|commit"),
            depthAt(1'006'000'000, 0), ftraceEvent(1'007'000'000, 90, "E|90"),
            depthAt(1'016'000'000, 1), depthAt(1'022'000'000, 0)};
}

const std::string kFrames = packet(ftraceBundle(frames()));

std::string framesAnd(const Proto& event) {
    std::vector<Proto> events = frames();
    events.push_back(event);
    return packet(ftraceBundle(events));
}

/** The frames, and a counter of the second processor at the start or at the end of the trace. */
std::string framesWithStats(uint64_t phase, uint32_t counter, uint64_t value) {
    const Proto processor = Proto().number(counter, value);
    return kFrames + packet(Proto().message(34, Proto().number(1, phase)
                                                        .message(2, Proto().number(1, 0))
                                                        .message(2, processor)));
}

TEST(PerfettoTest, WarnsOfLossAndDamage) {
    const std::string incomplete = kFrames.substr(0, kFrames.size() - 1);
    const std::string zlib = test::zlib(kFrames + kFrames);
    const auto rest = [](const Proto& fields) { return packet(ftraceBundle(frames(), fields)); };
    const auto zlibPacket = [](const std::string& data) { return packet(Proto().text(50, data)); };
    const std::string badWireType = packet(Proto().message(1, Proto().text(2, "\x0f")));
    const std::string badZlib = packet(compressedPackets("\x01"));
    const std::string twoLosses =
            rest(Proto().number(3, 1)) + rest(Proto().number(3, 0)) + rest(Proto().number(3, 1));
    using Traces = std::vector<std::pair<const char*, std::string>>;
    const std::pair<const char*, Traces> groups[] = {
            {"",
             {{"whole", kFrames},
              {"bytes after zlib", kFrames + zlibPacket(zlib + "x")},
              {"nested zlib", kFrames + packet(compressedPackets(badZlib))},
              {"overrun before the start", framesWithStats(1, 3, 4)},
              {"bytes read", framesWithStats(2, 5, 4)},
              {"1 ms earlier", framesAnd(ftraceEvent(1'021'000'000, 9, ""))},
              {"no time", framesAnd(ftraceEvent(0, 9, "clock sync"))}}},
            {"incomplete packets at the end: 1",
             {{"last packet", kFrames + incomplete}, {"last tag", kFrames + "\n"}}},
            {"damaged packets: 1",
             {{"wire type", kFrames + badWireType + kFrames},
              {"length", packet(Proto().text(2, "\x0a\x7f")) + kFrames},
              {"zlib", kFrames + zlibPacket("zlib")},
              {"incomplete zlib", kFrames + zlibPacket(zlib.substr(0, zlib.size() - 8))},
              {"incomplete packet in zlib", packet(compressedPackets(kFrames + incomplete))}}},
            {"ftrace bundles before which events were lost: 2", {{"lost events", twoLosses}}},
            {"processors whose ftrace buffer lost events: 1",
             {{"overrun", framesWithStats(2, 3, 4)}, {"dropped", framesWithStats(2, 8, 1)}}},
            {"ftrace bundles in a clock that is not related to boot time: 1",
             {{"local clock", rest(Proto().number(5, 3))},
              {"raw clock without a snapshot", rest(Proto().number(5, 4))},
              {"a snapshot without boot time",
               packet(Proto().message(6, Proto().message(1, Proto().number(1, 5).number(2, 1)))) +
                       rest(Proto().number(5, 4))},
              {"half of the pair", rest(Proto().number(5, 2).number(6, 1))}}},
            {"events skipped because they go back in time: 1",
             {{"earlier", framesAnd(ftraceEvent(1'020'999'999, 9, ""))}}},
            {"counters skipped because their value is not a number: 1",
             {{"no number", framesAnd(ftraceEvent(1'030'000'000, 9, "C|9|a|b"))}}},
            {"queue depths that change by more than one: 1",
             {{"jump", framesAnd(depthAt(1'030'000'000, 2))}}},
    };
    for (const auto& [warning, traces] : groups) {
        for (const auto& [name, bytes] : traces)
            EXPECT_EQ(warningsOf(read(bytes)), warning) << name;
    }
}

TEST(PerfettoTest, TimesAreThoseOfAllEvents) {
    const Timeline timeline =
            read(framesAnd(ftraceEvent(3'000'000'000, 9, "")) +
                 packet(ftraceBundle({ftraceEvent(500'000'001, 9, "")})) +
                 packet(ftraceBundle({ftraceEvent(0xffff'ffff'0000'0000, 9, "")})));
    EXPECT_EQ(timeline.startNs, 500'000'001);
    EXPECT_EQ(timeline.endNs, 3'000'000'000);
}

TEST(PerfettoTest, SortsEventsByTimeThenByPosition) {
    const std::vector<Proto> depths = {depthAt(1'030'000'000, 1), depthAt(1'030'500'000, 2),
                                       depthAt(1'031'000'000, 0), depthAt(1'031'000'000, 1),
                                       depthAt(1'031'000'000, 2), depthAt(1'031'000'000, 0)};
    std::vector<Proto> swapped = depths;
    std::swap(swapped[0], swapped[1]);
    std::string separate;
    for (const Proto& event : depths)
        separate += packet(ftraceBundle({event}));
    const std::string expected = describe(read(packet(ftraceBundle(depths))));
    EXPECT_EQ(describe(read(packet(ftraceBundle(swapped)))), expected);
    EXPECT_EQ(describe(read(separate)), expected);
}

TEST(PerfettoTest, KeepsTheEventsBeforeDamage) {
    // An event with a field of an unknown type.
    const std::string damaged =
            packet(ftraceBundle(frames(), Proto().text(2, "\x0f").message(2, depthAt(1, 1))));
    EXPECT_EQ(describe(read(damaged)), describe(read(kFrames)));
    EXPECT_EQ(warningsOf(read(damaged)), "damaged packets: 1");
}

TEST(PerfettoTest, RecognisesTheFormatByItsFirstBytes) {
    const std::tuple<const char*, std::string, bool> cases[] = {
            {"whole", kFrames, true},
            {"first half", kFrames.substr(0, kFrames.size() / 2), true},
            {"second packet incomplete", kFrames + kFrames.substr(0, 2), true},
            {"unknown field", Proto().message(1, Proto().text(33, "config")).bytes(), true},
            {"text in a packet", "\n\n    text\n\n", false},
            {"empty", "", false},
            {"a newline", "\n", false},
            {"a text after a newline", "\n# tracer: nop\n#\n a-1 [000] 1.000000: 0: E\n", false},
            {"a latency dump after a newline", "\n16666666\n0\t0\t0\n", false},
            {"a field of another type", Proto().message(1, Proto().number(1, 5)).bytes(), false},
            {"a field longer than its packet", Proto().text(1, "\x0a\x7f").bytes() + kFrames,
             false},
            {"another field of the trace", Proto().message(2, Proto().number(8, 5)).bytes(), false},
            {"damaged second packet", kFrames + "x", false},
    };
    for (const auto& [name, head, isPerfetto] : cases)
        EXPECT_EQ(beginsAsPerfetto(head), isPerfetto) << name;
}

TEST(PerfettoTest, ReportsTracesThatItCannotUse) {
    const std::string filler = packet(Proto().text(33, std::string(8'000, 'x')));
    const std::string noEvents =
            "expected a Perfetto trace with ftrace events, got none; was the data source "
            "\"linux.ftrace\" on?";
    const auto damageAt = [](size_t position) {
        return fmt::format(
                "expected a packet of a Perfetto trace at byte {}, got other data; copy the file "
                "again",
                position);
    };
    const std::pair<std::string, std::string> cases[] = {
            {filler, noEvents},
            {packet(ftraceBundle({})), noEvents},
            {filler + kFrames + "x" + kFrames, damageAt(filler.size() + kFrames.size())},
            {filler + "\n" + std::string(11, '\xff'), damageAt(filler.size())},
    };
    for (const auto& [bytes, error] : cases)
        EXPECT_EQ(errorOf([&trace = bytes] { read(trace); }), "trace: " + error);

    const std::string large = packet(Proto().text(33, std::string(size_t{1} << 22, '\0')));
    const std::string compressed = packet(compressedPackets(large));
    std::string tooLarge = kFrames;
    for (int i = 0; i < 64; ++i)
        tooLarge += compressed;
    const std::string error = errorOf([&] { read(tooLarge); });
    EXPECT_EQ(error.find("trace: expected a compressed trace, got "), 0u) << error;
}

TEST(PerfettoTest, LimitsTheExpansion) {
    constexpr size_t kMiB = size_t{1} << 20;
    const std::pair<size_t, size_t> limits[] = {
            {1, 256 * kMiB}, {300'000, 300'000'000}, {kMiB * 1024, kMiB * 4096}};
    for (const auto& [compressed, expanded] : limits) {
        ExpansionLimit limit("trace");
        limit.add(expanded - 1, compressed);
        limit.add(1, compressed);
        EXPECT_THROW(limit.add(1, compressed), InputError) << expanded;
    }
}

TEST(PerfettoTest, NamesThreadsAndFindsTheLastSequence) {
    const auto process = [](uint64_t pid, const char* command) {
        return Proto().message(1, Proto().number(1, pid).text(3, command).text(3, "--argument"));
    };
    const auto thread = [](uint64_t tid, const char* name) {
        return Proto().message(2, Proto().number(1, tid).text(2, name).number(3, 90));
    };
    const Proto track = Proto().number(1, 5).message(
            4, Proto().number(1, 90).number(2, 4'194'305).text(5, "Monitor0"));
    TraceForm form;
    read(packet(Proto().message(2, process(90, "/system/bin/compositor")
                                           .append(thread(91, "old"))
                                           .append(thread(92, "")))) +
                 packet(Proto().message(2, thread(91, "Binder:1").append(process(91, "ignored")))) +
                 packet(Proto().message(60, track)) +
                 packet(compressedPackets(Proto().message(1, Proto().number(10, 300)).bytes())) +
                 framesAnd(ftraceEvent(2'000'000'000, 93, "E")),
         {}, kWhole, &form);
    const std::unordered_map<int32_t, std::string> expected = {
            {90, "compositor"}, {91, "Binder:1"}, {92, ""}, {93, ""}, {4'194'305, "Monitor0"}};
    EXPECT_EQ(form.threads, expected);
    EXPECT_EQ(form.lastSequenceId, 300u);
    EXPECT_EQ(form.compositorPid, 90);
    EXPECT_EQ(form.compositorTid, 90);
}

std::string frameBegin(uint64_t cookie, const std::string& layer, uint64_t present, uint64_t jank) {
    const Proto frame = Proto().number(1, cookie)
                                .number(4, 90)
                                .text(5, layer)
                                .number(6, present)
                                .number(9, jank);
    return packet(Proto().number(8, 10).number(58, 3).message(76, Proto().message(4, frame)));
}

std::string frameEnd(uint64_t cookie) {
    const Proto end = Proto().message(5, Proto().number(1, cookie));
    return packet(Proto().number(8, 20).message(76, end));
}

/** The packets of a frame in the frame timeline, from 10 ns, in another clock, to 20 ns. */
std::string judgedFrame(uint64_t cookie, const std::string& layer, uint64_t present,
                        uint64_t jank = 1) {
    return frameBegin(cookie, layer, present, jank) + frameEnd(cookie);
}

TEST(PerfettoTest, TakesTheVerdictsOnTheFocusedLayersFrames) {
    EXPECT_FALSE(read(kFrames).judgedFrames);

    const std::string layer = "TX - com.example/com.example.Main#7";
    const std::string expected =
            packet(Proto().message(76, Proto().message(3, Proto().number(1, 40).text(5, layer))));
    const Timeline timeline =
            read(packet(clockSnapshot(3, 1'000, 1'005)) + judgedFrame(1, layer, 1) +
                 judgedFrame(2, layer, 2, 64) + judgedFrame(3, "TX - other#8", 2, 64) +
                 judgedFrame(4, layer, 3) + judgedFrame(5, layer, 4) +
                 judgedFrame(6, layer, 2, 64 | 1024) + judgedFrame(7, layer, 5) +
                 judgedFrame(8, layer, 77) + judgedFrame(9, layer.substr(5), 2) + expected +
                 frameBegin(10, layer, 2, 64) + frameEnd(1) + kFrames);
    ASSERT_TRUE(timeline.judgedFrames);
    std::string verdicts;
    for (const JudgedFrame& frame : *timeline.judgedFrames)
        verdicts += fmt::format("{} {}-{}, ", "?OLED"[static_cast<size_t>(frame.verdict)],
                                frame.beginNs, frame.endNs);
    // On time, late, early, dropped, dropped, and two that are unknown.
    EXPECT_EQ(verdicts, "O 15-20, L 15-20, E 15-20, D 15-20, D 15-20, ? 15-20, ? 15-20, ");
    const report::Summary summary =
            report::summarise("trace", timeline, {}, {timeline.startNs, timeline.endNs});
    std::ostringstream text;
    report::print(summary, text, report::Legend::Hidden);
    EXPECT_NE(text.str().find("\ndeadlines     7 frames, 1 late, 2 dropped (from the frame "
                              "timeline)\n"),
              std::string::npos);
    std::ostringstream json;
    report::printJson({{summary, {}}}, json);
    EXPECT_EQ(nlohmann::json::parse(json.str())["replays"][0]["frame_timeline"],
              nlohmann::json::parse(R"({"frames": 7, "late": 1, "dropped": 2})"));
}

}  // namespace
}  // namespace brevold::trace
