// From the bytes of a Perfetto trace to a timeline: the same as from the text of that trace.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "base/error.h"
#include "base/text.h"
#include "report/labels.h"
#include "report/summary_json.h"
#include "report/summary_text.h"
#include "tests/gzip.h"
#include "tests/proto_writer.h"
#include "trace/event_line.h"
#include "trace/expansion_limit.h"
#include "trace/perfetto_packets.h"
#include "trace/perfetto_reader.h"
#include "trace/read_timeline.h"
#include "trace/string_source.h"

namespace brevold::trace {
namespace {

using test::clockSnapshot;
using test::compressedPackets;
using test::ftraceBundle;
using test::ftraceEvent;
using test::packet;
using test::Proto;
using Texts = std::vector<std::string>;

Timeline read(const std::string& bytes, TraceForm* form = nullptr, size_t maxRead = 4096) {
    TraceInput input(std::make_unique<StringSource>(bytes, maxRead), "trace");
    return readTimeline(input, {}, form);
}

Texts warningsOf(const std::string& bytes) {
    Texts texts;
    for (const TraceWarning& warning : read(bytes).warnings)
        texts.push_back(report::warningText(warning));
    return texts;
}

std::string errorOf(const std::string& bytes) {
    try {
        read(bytes);
    } catch (const InputError& error) {
        return error.what();
    }
    return "no error";
}

std::string describe(const Timeline& timeline) {
    std::ostringstream text;
    for (const Layer& layer : timeline.layers)
        text << layer.name << '*' << layer.frames << ' ';
    text << timeline.focusedLayer << ' ' << timeline.startNs << " to " << timeline.endNs << ' '
         << report::periodSourceText(timeline.periodSource, timeline.periodCounter) << ' '
         << report::compositionSourceText(timeline.compositionSource) << ' '
         << report::vsyncSourceText(timeline.vsyncSource) << '\n';
    for (const TimelineEvent& event : timeline.events) {
        text << event.timeNs << ' ' << static_cast<int>(event.kind) << ' ' << event.layer << ' '
             << event.depth << ' ' << event.periodNs << '\n';
    }
    return text.str();
}

struct Bundles {
    uint64_t clockDelayNs = 0;  // of the clock of the events, relative to boot time
    Proto rest;                 // of each bundle
};

/**
 * The packets of a text trace, with two processors whose bundles overlap: the bundle of the second
 * one comes first and has half of the threads.
 */
Texts packetsOf(const std::string& text, const Bundles& bundles = {}) {
    constexpr size_t kBundleEvents = 50;
    Texts packets;
    std::vector<Proto> events[2];
    const auto flush = [&] {
        for (const int processor : {1, 0}) {
            packets.push_back(packet(ftraceBundle(events[processor], bundles.rest)));
            events[processor].clear();
        }
    };
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        EventLine event;
        if (!parseEventLine(line, &event)) continue;
        takeUntil(':', &event.event);
        const auto timeNs = static_cast<uint64_t>(event.timeNs) - bundles.clockDelayNs;
        std::vector<Proto>& processor = events[event.tid % 2];
        processor.push_back(ftraceEvent(timeNs, event.tid, std::string(trimStart(event.event))));
        processor.push_back(ftraceEvent(timeNs, 0, ""));
        if (processor.size() > kBundleEvents) flush();
    }
    flush();
    return packets;
}

std::string join(const Texts& packets) {
    std::string bytes;
    for (const std::string& one : packets)
        bytes += one;
    return bytes;
}

std::string example(const std::string& name) {
    std::ifstream file(std::string(BREVOLD_EXAMPLES "/") + name);
    return {std::istreambuf_iterator<char>(file), {}};
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
        const std::string text = example(name);
        const Texts packets = packetsOf(text);
        const std::string bytes = join(packets);
        Texts reversed(packets.rbegin(), packets.rend());
        std::string compressed;
        for (const std::string& one : packets)
            compressed += packet(compressedPackets(skipped + one));
        const std::map<std::string, std::string> forms = {
                {"plain", bytes},
                {"other packets", skipped + bytes + skipped},
                {"reversed", join(reversed)},
                {"compressed", compressed},
                {"gzip", gzip(bytes)},
                {"global clock", join(packetsOf(text, {kDelayNs, globalClock}))},
                {"raw clock", packet(clockSnapshot(5, 1'000, kDelayNs + 1'000)) +
                                      join(packetsOf(text, {kDelayNs, Proto().number(5, 4)}))},
        };
        const std::string expected = describe(read(text));
        for (const auto& [form, trace] : forms) {
            const Timeline timeline = read(trace);
            EXPECT_EQ(describe(timeline), expected) << name << ", " << form;
            EXPECT_TRUE(timeline.warnings.empty()) << name << ", " << form;
        }
        for (const size_t maxRead : {1u, 7u, 64u})
            EXPECT_EQ(describe(read(bytes, nullptr, maxRead)), expected) << name << ", " << maxRead;
    }
}

const std::string kCounter = "C|90|BufferTX - com.example/com.example.Main#7|";

/** Two frames of a layer, queued and latched on a compositor's threads. */
std::vector<Proto> frames() {
    constexpr uint64_t kStartNs = 1'000'000'000;
    return {ftraceEvent(kStartNs, 91, kCounter + "1"),
            ftraceEvent(kStartNs + 5'000'000, 90, "B|90|commit"),
            ftraceEvent(kStartNs + 6'000'000, 90, kCounter + "0"),
            ftraceEvent(kStartNs + 7'000'000, 90, "E|90"),
            ftraceEvent(kStartNs + 16'000'000, 91, kCounter + "1"),
            ftraceEvent(kStartNs + 22'000'000, 90, kCounter + "0")};
}

Proto depthAt(uint64_t timeNs, int depth) {
    return ftraceEvent(timeNs, depth == 0 ? 90 : 91, kCounter + std::to_string(depth));
}

std::vector<Proto> framesAnd(const Proto& event) {
    std::vector<Proto> events = frames();
    events.push_back(event);
    return events;
}

Proto ftraceStats(uint64_t phase, const Proto& processor) {
    return Proto().message(
            34, Proto().number(1, phase).message(2, Proto().number(1, 0)).message(2, processor));
}

TEST(PerfettoTest, WarnsOfLossAndDamage) {
    const std::string bytes = packet(ftraceBundle(frames()));
    const std::string incomplete = bytes.substr(0, bytes.size() - 1);
    const std::string zlib = test::zlib(bytes + bytes);
    const auto rest = [](const Proto& fields) { return packet(ftraceBundle(frames(), fields)); };
    const struct {
        const char* name;
        std::string bytes;
        Texts warnings;
    } cases[] = {
            {"whole", bytes, {}},
            {"last packet", bytes + incomplete, {"the last packet is incomplete: 1"}},
            {"last tag", bytes + "\n", {"the last packet is incomplete: 1"}},
            {"wire type",
             bytes + packet(Proto().message(1, Proto().text(2, "\x0f"))) + bytes,
             {"damaged packets: 1"}},
            {"length", packet(Proto().text(2, "\x0a\x7f")) + bytes, {"damaged packets: 1"}},
            {"zlib", bytes + packet(Proto().text(50, "zlib")), {"damaged packets: 1"}},
            {"incomplete zlib",
             bytes + packet(Proto().text(50, zlib.substr(0, zlib.size() - 8))),
             {"damaged packets: 1"}},
            {"bytes after zlib", bytes + packet(Proto().text(50, zlib + "x")), {}},
            {"incomplete packet in zlib",
             packet(compressedPackets(bytes + incomplete)),
             {"damaged packets: 1"}},
            {"nested zlib",
             bytes + packet(compressedPackets(packet(compressedPackets("\x01")))),
             {}},
            {"lost events",
             rest(Proto().number(3, 1)) + rest(Proto().number(3, 0)) + rest(Proto().number(3, 1)),
             {"ftrace bundles before which events were lost: 2"}},
            {"overrun",
             bytes + packet(ftraceStats(2, Proto().number(3, 4))),
             {"processors whose ftrace buffer lost events: 1"}},
            {"dropped",
             bytes + packet(ftraceStats(2, Proto().number(8, 1))),
             {"processors whose ftrace buffer lost events: 1"}},
            {"overrun before the start", bytes + packet(ftraceStats(1, Proto().number(3, 4))), {}},
            {"bytes read", bytes + packet(ftraceStats(2, Proto().number(5, 4))), {}},
            {"local clock",
             rest(Proto().number(5, 3)),
             {"ftrace bundles in a clock that is not related to boot time: 1"}},
            {"raw clock without a snapshot",
             rest(Proto().number(5, 4)),
             {"ftrace bundles in a clock that is not related to boot time: 1"}},
            {"half of the pair",
             rest(Proto().number(5, 2).number(6, 1)),
             {"ftrace bundles in a clock that is not related to boot time: 1"}},
            {"1 ms earlier",
             packet(ftraceBundle(framesAnd(ftraceEvent(1'021'000'000, 9, "")))),
             {}},
            {"earlier",
             packet(ftraceBundle(framesAnd(ftraceEvent(1'020'999'999, 9, "")))),
             {"events skipped because they go back in time: 1"}},
            {"no time", packet(ftraceBundle(framesAnd(ftraceEvent(0, 9, "clock sync")))), {}},
            {"no number",
             packet(ftraceBundle(framesAnd(ftraceEvent(1'030'000'000, 9, "C|9|a|b")))),
             {"counters skipped because their value is not a number: 1"}},
            {"jump",
             packet(ftraceBundle(framesAnd(depthAt(1'030'000'000, 2)))),
             {"queue depths that change by more than one: 1"}},
    };
    for (const auto& one : cases)
        EXPECT_EQ(warningsOf(one.bytes), one.warnings) << one.name;
}

TEST(PerfettoTest, TimesAreThoseOfAllEvents) {
    const Timeline timeline =
            read(packet(ftraceBundle(framesAnd(ftraceEvent(3'000'000'000, 9, "")))) +
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
    EXPECT_EQ(describe(read(damaged)), describe(read(packet(ftraceBundle(frames())))));
    EXPECT_EQ(warningsOf(damaged), Texts{"damaged packets: 1"});
}

TEST(PerfettoTest, RecognisesTheFormatByItsFirstBytes) {
    const std::string bytes = packet(ftraceBundle(frames()));
    const struct {
        const char* name;
        std::string head;
        bool isPerfetto;
    } cases[] = {
            {"whole", bytes, true},
            {"first half", bytes.substr(0, bytes.size() / 2), true},
            {"second packet incomplete", bytes + bytes.substr(0, 2), true},
            {"unknown field", Proto().message(1, Proto().text(33, "config")).bytes(), true},
            {"text in a packet", "\n\n    text\n\n", false},
            {"empty", "", false},
            {"a newline", "\n", false},
            {"a text after a newline", "\n# tracer: nop\n#\n a-1 [000] 1.000000: 0: E\n", false},
            {"a latency dump after a newline", "\n16666666\n0\t0\t0\n", false},
            {"a field of another type", Proto().message(1, Proto().number(1, 5)).bytes(), false},
            {"a field longer than its packet", Proto().text(1, "\x0a\x7f").bytes() + bytes, false},
            {"another field of the trace", Proto().message(2, Proto().number(8, 5)).bytes(), false},
            {"damaged second packet", bytes + "x", false},
    };
    for (const auto& one : cases)
        EXPECT_EQ(beginsAsPerfetto(one.head), one.isPerfetto) << one.name;
}

TEST(PerfettoTest, ReportsTracesThatItCannotUse) {
    const std::string bytes = packet(ftraceBundle(frames()));
    const std::string filler = packet(Proto().text(33, std::string(8'000, 'x')));
    const std::string noEvents =
            "trace: expected a Perfetto trace with ftrace events, got none; was the data source "
            "\"linux.ftrace\" on?";
    EXPECT_EQ(errorOf(filler), noEvents);
    EXPECT_EQ(errorOf(packet(ftraceBundle({}))), noEvents);
    const auto damageAt = [](size_t byte) {
        return fmt::format(
                "trace: expected a packet of a Perfetto trace at byte {}, got other data; copy the "
                "file again",
                byte);
    };
    EXPECT_EQ(errorOf(filler + bytes + "x" + bytes), damageAt(filler.size() + bytes.size()));
    const std::string endlessLength(11, '\xff');
    EXPECT_EQ(errorOf(filler + "\n" + endlessLength), damageAt(filler.size()));
}

TEST(PerfettoTest, RefusesPacketsThatExpandTooFar) {
    const std::string filler = packet(Proto().text(33, std::string(size_t{1} << 20, '\0')));
    const std::string compressed = packet(compressedPackets(filler + filler + filler + filler));
    std::string bytes = packet(ftraceBundle(frames()));
    for (int i = 0; i < 64; ++i)
        bytes += compressed;
    const std::string error = errorOf(bytes);
    EXPECT_NE(error.find("trace: expected a compressed trace, got "), std::string::npos) << error;
    EXPECT_NE(error.find(" bytes that expand to more than 256 MiB"), std::string::npos) << error;
}

TEST(PerfettoTest, LimitsTheExpansion) {
    constexpr size_t kMiB = size_t{1} << 20;
    const struct {
        size_t compressed;
        size_t expanded;
        bool isRefused;
    } cases[] = {
            {1, 256 * kMiB, false},
            {1, 256 * kMiB + 1, true},
            {300'000, 300'000'000, false},
            {300'000, 300'000'001, true},
            {kMiB * 1024, kMiB * 4096, false},
            {kMiB * 1024, kMiB * 4096 + 1, true},
    };
    for (const auto& one : cases) {
        ExpansionLimit limit("trace");
        limit.add(one.expanded - 1, one.compressed);
        if (one.isRefused) {
            EXPECT_THROW(limit.add(1, one.compressed), InputError) << one.expanded;
        } else {
            EXPECT_NO_THROW(limit.add(1, one.compressed)) << one.expanded;
        }
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
                 packet(ftraceBundle(framesAnd(ftraceEvent(2'000'000'000, 93, "E")))),
         &form);
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
    const std::string bytes = packet(ftraceBundle(frames()));
    EXPECT_FALSE(read(bytes).judgedFrames);

    const std::string layer = "TX - com.example/com.example.Main#7";
    const std::string expected =
            packet(Proto().message(76, Proto().message(3, Proto().number(1, 40).text(5, layer))));
    const Timeline timeline =
            read(packet(clockSnapshot(3, 1'000, 1'005)) + judgedFrame(1, layer, 1) +
                 judgedFrame(2, layer, 2, 64) + judgedFrame(3, "TX - other#8", 2, 64) +
                 judgedFrame(4, layer, 3) + judgedFrame(5, layer, 4) +
                 judgedFrame(6, layer, 2, 64 | 1024) + judgedFrame(7, layer, 5) +
                 judgedFrame(8, layer, 77) + judgedFrame(9, layer.substr(5), 2) + expected +
                 frameBegin(10, layer, 2, 64) + frameEnd(1) + bytes);
    ASSERT_TRUE(timeline.judgedFrames);
    using Verdict = FrameVerdict;
    std::vector<Verdict> verdicts;
    for (const JudgedFrame& frame : *timeline.judgedFrames) {
        verdicts.push_back(frame.verdict);
        EXPECT_EQ(frame.beginNs, 15);
        EXPECT_EQ(frame.endNs, 20);
    }
    EXPECT_EQ(verdicts, (std::vector<Verdict>{Verdict::OnTime, Verdict::Late, Verdict::Early,
                                              Verdict::Dropped, Verdict::Dropped, Verdict::Unknown,
                                              Verdict::Unknown}));
}

TEST(PerfettoTest, SummaryCountsLateAndDroppedFrames) {
    Timeline timeline = read(packet(ftraceBundle(frames())));
    using Verdict = FrameVerdict;
    timeline.judgedFrames.emplace();
    for (const Verdict verdict : {Verdict::OnTime, Verdict::Late, Verdict::Dropped, Verdict::Early,
                                  Verdict::Late, Verdict::Unknown}) {
        timeline.judgedFrames->push_back({10, 20, verdict});
    }
    const report::Summary summary =
            report::summarise("trace", timeline, {}, {timeline.startNs, timeline.endNs});
    std::ostringstream text;
    report::print(summary, text, report::Legend::Hidden);
    EXPECT_NE(text.str().find("\ndeadlines     6 frames, 2 late, 1 dropped (from the frame "
                              "timeline)\n"),
              std::string::npos);
    std::ostringstream json;
    report::printJson({{summary, {}}}, json);
    EXPECT_EQ(nlohmann::json::parse(json.str())["replays"][0]["frame_timeline"],
              nlohmann::json::parse(R"({"frames": 6, "late": 2, "dropped": 1})"));
}

}  // namespace
}  // namespace brevold::trace
