// From an input's bytes to a timeline: the kinds of input, the lines of a trace, the activity of
// the compositor, errors and warnings.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <tuple>

#include "base/error.h"
#include "replay/labels.h"
#include "tests/gzip.h"
#include "trace/read_timeline.h"
#include "trace/refresh_period.h"
#include "trace/string_source.h"

namespace brevold::trace {
namespace {

using Texts = std::vector<std::string>;
using replay::compositionSourceText;
using replay::periodSourceText;
using replay::vsyncSourceText;
using replay::warningText;

const std::string kName = "trace";
constexpr size_t kWhole = std::string::npos;

TraceInput inputOf(const std::string& bytes, size_t maxRead = kWhole) {
    return {std::make_unique<StringSource>(bytes, maxRead), kName};
}

std::string rest(ByteSource& source) {
    std::string text;
    char block[1000];
    while (const size_t count = source.read(block, sizeof(block)))
        text.append(block, count);
    return text;
}

Timeline read(const std::string& bytes, const TimelineOptions& options = {},
              size_t maxRead = kWhole) {
    TraceInput input = inputOf(bytes, maxRead);
    // The first reading gives the bytes of the head at once, and only a second one in small reads.
    rest(input.open());
    return readTimeline(input, options);
}

/** The warnings about an input, or the error without the name. */
Texts warningsOf(const std::string& bytes, const TimelineOptions& options = {}) {
    Texts texts;
    try {
        for (const TraceWarning& warning : read(bytes, options).warnings)
            texts.push_back(warningText(warning));
    } catch (const InputError& error) {
        texts = {std::string(error.what()).substr(kName.size())};
    }
    return texts;
}

/**
 * A trace of the compositor, process 90, of "<time> <thread> <mark>;" with times in tenths of a
 * millisecond; the mark "+name" is a frame in that counter, latched a millisecond later.
 */
std::string trace(const std::string& marks) {
    std::istringstream input(marks);
    std::string text;
    for (int time, tid; input >> time >> tid;) {
        std::string mark;
        std::getline(input.ignore(), mark, ';');
        const bool isFrame = mark[0] == '+';
        if (isFrame) mark = "C|90|" + mark.substr(1) + "|1";
        text += fmt::format("a b-{} [000] {}.{:04}: 0: {}\n", tid, time / 10000, time % 10000,
                            mark);
        if (!isFrame) continue;
        mark.back() = '0';
        text += trace(std::to_string(time + 10) + " 90 " + mark);
    }
    return text;
}

std::string layersOf(const Timeline& timeline) {
    std::string text;
    for (const Layer& layer : timeline.layers)
        text += layer.name + "*" + std::to_string(layer.frames) + " ";
    return text;
}

/** Times in tenths of a millisecond; < and > for start and end of a composition, | for a vsync. */
std::string describe(const Timeline& timeline) {
    std::string text;
    for (const TimelineEvent& event : timeline.events) {
        text += std::to_string(event.timeNs / 100'000);
        if (event.kind == TimelineEvent::Kind::Period) {
            text += " " + std::to_string(event.periodNs);
        } else if (event.kind == TimelineEvent::Kind::Depth ||
                   event.kind == TimelineEvent::Kind::Frame) {
            text += timeline.layers[static_cast<size_t>(event.layer)].name + "=" +
                    std::to_string(event.depth);
        } else {
            text += "   <>|"[static_cast<size_t>(event.kind)];
        }
        text += " ";
    }
    return text + "to " + std::to_string(timeline.endNs / 100'000) + "; " + layersOf(timeline) +
           "; " + compositionSourceText(timeline.compositionSource) + ", " +
           vsyncSourceText(timeline.vsyncSource);
}

const std::string kElement = "<script class=\"trace-data\" type=\"application/text\">\n";

std::string pageOf(const std::string& content, size_t viewerBytes = 30) {
    return "<!DOCTYPE html>\n<script>" + std::string(viewerBytes, 'x') + "</script>\n" + kElement +
           "PROCESS DUMP\n  </script>\n" + kElement + content + "  </script>\n</html>\n";
}

std::string oldPageOf(const std::string& content) {
    std::string escaped = std::regex_replace(content, std::regex("[\"\\\\]"), "\\$&");
    escaped.pop_back();  // The string may end without a newline.
    escaped = std::regex_replace(escaped, std::regex("\n"), "\\n\\\n");
    return "<html><script>\n  var linuxPerfData = \"\\\n" + escaped + "\";\n</script></html>";
}

TEST(TimelineTest, FindsTheTextInEveryKindOfInput) {
    const std::string text = "# tracer: nop\n" + trace("0 91 +a;20 90 B|90|composite \"1\\2\";");
    std::string longText = text;
    for (int i = 1; i <= 20'000; ++i)
        longText += fmt::format("a-{} [000] 2.0: 0: C|90|a|{}\n", 90 + i % 2, i % 2);
    const std::vector<size_t> small = {1, 2, 3, 7, 64, kWhole};
    const std::vector<size_t> large = {4096, kWhole};
    const struct {
        const char* what;
        std::string bytes;
        std::string text;
        std::vector<size_t> maxReads;
    } cases[] = {
            {"text", text, text, small},
            {"old page", oldPageOf(text), text, small},
            {"two pages", pageOf(text) + pageOf(text), text + text, small},
            {"long page", pageOf(longText, 300'000), longText, large},
            {"gzip", gzip(text), text, small},
            {"gzip of two members and padding", gzip(text) + gzip(text) + "0", text + text, small},
            {"gzip of an old page", gzip(oldPageOf(text)), text, small},
            {"gzip of a long page", gzip(pageOf(longText, 300'000)), longText, large},
    };
    for (const auto& [what, bytes, expected, maxReads] : cases) {
        for (const size_t maxRead : maxReads) {
            TraceInput input = inputOf(bytes, maxRead);
            EXPECT_EQ(rest(input.open()), expected) << what << " in reads of " << maxRead;
            char some[10];
            input.open().read(some, sizeof(some));
            EXPECT_EQ(rest(input.open()), expected) << what << " again, in reads of " << maxRead;
        }
    }
    EXPECT_EQ(layersOf(read(longText)), "a#0*10001 ");
}

TEST(TimelineTest, ReportsErrorsAndWarnings) {
    const std::string event = "a-7 [001] 1.0: sched_wakeup: comm=b\n";
    const std::string start = trace("40 9 C|9|BufferTX - a|3;50 9 C|9|BufferTX - a|2;");
    const std::string early = trace("0 9 E;");
    const auto cutShort = [](int line) {
        return fmt::format(
                ":{}: expected a whole line, got the end of the text; was the recording "
                "cut short?",
                line);
    };
    const std::string whole = gzip(start);
    const std::string page = pageOf(start);
    const char* const pageCutShort =
            ": expected the end of a script element, got the end of the page; was the file cut "
            "short?";
    const std::pair<std::string, Texts> cases[] = {
            {"", {": expected ftrace text, got no bytes; was anything recorded?"}},
            {"# tracer\nhello [1] x\n", {": expected ftrace text, got no line with an event"}},
            {event, {": no layer has frames; record the trace with graphics events"}},
            {event + std::string(1, '\0') + "\n",
             {": expected text, got binary data at byte 36; record the trace as text"}},
            {event + "a-7 [001] 1.0: 0: C|9|a|1", {cutShort(2)}},
            {event + "a-7 [001] 1.0: 0: C|9|a\n",
             {":2: expected a counter with a whole number, got 'C|9|a'"}},
            {event + "a-7 [001] 1.0: 0: C|9|a|9223372036854775808\n",
             {":2: expected a counter with a whole number, got 'C|9|a|9223372036854775808'"}},
            {event + std::string(300'000, 'x') + "\n",
             {":2: expected a line of at most 262144 bytes, got a longer one"}},
            {start + early + early + early,
             {":3: expected ascending times, got mostly earlier ones from here on; is the time of "
              "a "
              "line above wrong?"}},
            {start + early, {}},
            {start + early + early,
             {"lines skipped because they go back in time: 2, the first in line 3"}},
            {start + early + trace("60 9 C|9|BufferTX - a|1;"),
             {"lines skipped because they go back in time: 1, the first in line 3"}},
            {"capturing trace... done\n" + start + "a-7 [001] 99999999999.0: 0: beyond 64 bits\n" +
                     "a-99999999999 [001] 4.0: 0: beyond 32 bits\n" +
                     "a-7 [001] 4.0000000001: 0: ten decimals\nstray\n",
             {"lines that are not trace events: 5, the first in line 1"}},
            {start + trace("60 9 C|9|BufferTX - a|0;70 9 C|9|BufferTX - a|-1;"
                           "80 9 C|9|BufferTX - a|0;90 9 C|9|BufferTX - a|2;"),
             {"queue depths below 0, taken as 0: 1, the first in line 4",
              "queue depths that change by more than one: 2, the first in line 3"}},
            {whole.substr(0, whole.size() - 1),
             {": expected more gzip data, got the end of the file; was the file cut short?"}},
            {whole.substr(0, whole.size() - 8) + "12345678",
             {": the gzip data is damaged; copy the file again"}},
            {page.substr(0, page.size() - 30), {pageCutShort}},
            {oldPageOf(start).substr(0, 100), {pageCutShort}},
            {pageOf("USER PID\n"),
             {": expected a page with ftrace text, found none in it; was tracing enabled?"}},
            {"999999\n",
             {":1: expected a refresh period of 1000000 to 1000000000 ns, got '999999'"}},
            {"16666666\n0\t0\t0\n5\t9223372036854775807\t6\n",
             {": expected rows of presented frames, got none; was the layer drawing?"}},
            {"16666666\n5000\t6000\t50", {cutShort(2)}},
            {"16666666\n5\t6000\t5\nx\n5\t7000\t4\n5\t8000\t9000000000000000001\n",
             {"lines that are not rows of a latency dump: 2, the first in line 3",
              "rows skipped because they go back in time: 1, the first in line 4"}},
    };
    for (const auto& [bytes, warnings] : cases)
        EXPECT_EQ(warningsOf(bytes), warnings) << bytes.substr(0, 300);
}

TEST(TimelineTest, ReadsTheEvents) {
    const std::pair<std::string, const char*> cases[] = {
            // Event lines of all releases, and lines without a mark of the compositor.
            {"# tracer: nop\n\n surfaceflinger-90  [000] 5.25: 0: C|90|BufferTX - a|b|1\n"
             "<...>-7 (-----) [001] ...1 6.0: tracing_mark_write: B|90|composite x|y\n"
             "a b-c (1) [0]-7 [011] 7.000001: 0: B|9\n"
             "a-7 [001] 8.0: 0: C|9|heap|1.5|cat\na-7 [001] 8.0: 0: S|9|a|2\n"
             "a-7 [001] 8.0: sched_wakeup: comm=C|90|BufferTX - a|b|2\n"
             "a-7 ( 990) [001] .... 8.200000000: print: E|9\na-7 [001] d..3 50260.929925: 0: E\r\n",
             "52500 16666666 52500a|b#0=1 60000< 502609299> to 502609299; a|b#0*1 ; "
             "composite sections, none in the trace"},
            // Events of one time stay in the order of the trace.
            {trace("0 5 x;10 92 C|90|VSYNC-sf|1;12 92 C|90|VSYNC|1;20 91 C|90|BufferTX - a#3|-4;"
                   "20 91 C|90|BufferTX - a#3|2;25 9 C|90|VSR-setPeriod|999999;"
                   "26 9 C|90|VSR-setPeriod|11000000;27 9 C|90|VSR-setPeriod|11000001;"
                   "28 9 C|90|VSR-setPeriod|7000000;30 90 B|90|commit 7;"
                   "30 90 C|90|BufferTX - a#3|1;30 90 E|90;30 92 C|90|VSYNC-sf|1;"
                   "30 92 C|90|VSYNC-sf|0;50 5 x"),
             "0 11111111 10| 20a#3=2 28 7000000 30< 30a#3=1 30> 30| to 50; a#3*1 ; "
             "commit sections, VSYNC-sf"},
            // The outermost compositions that have an end.
            {trace("0 90 E;1 91 +BufferTX - a#0;20 90 B|90|commit 1;21 90 E;"
                   "22 90 B|90|commitTransaction;23 90 B|90|handleMessageRefresh;"
                   "24 90 B|90|postFramebuffer;24 91 B|90|queueBuffer;25 90 E|90;26 91 E|90;"
                   "27 90 E|90;28 90 E|90;30 90 B|90|composite 1;31 90 B|90|lost;"
                   "40 90 B|90|composite 2;41 90 E;50 90 B|90|composite;51 90 E;"
                   "52 90 B|90|commit 2;53 90 B|90|composite;54 90 E;55 90 E;60 90 B|90|composite "
                   "3;"),
             "0 16666666 1a#0=1 11a#0=0 23< 27> 40< 41> 50< 51> 53< 54> to 60; a#0*1 ; "
             "composite sections, none in the trace"},
            // Without compositions, latches replace them.
            {trace("0 91 +BufferTX - a#1;41 91 +BufferTX - b#2;60 91 C|90|BufferTX - a#1|1;"
                   "90 90 C|90|BufferTX - a#1|0;100 91 +BufferTX - b#2;"),
             "0 16666666 0a#1=1 10< 10a#1=0 10> 41b#2=1 51< 51b#2=0 60a#1=1 90a#1=0 90> 100b#2=1 "
             "110< 110b#2=0 110> to 110; a#1*2 b#2*2 ; latches, none in the trace"},
            // The fourth frame is ready late; the first row is unused, the last two are pending.
            {"WARNING: something\n16700000\n0\t0\t0\n5\t50000000\t10000000\n5\t67000000\t20000000\n"
             "5\t84000000\t75000000\n90000000\t9223372036854775807\t80000000\n0\t0\t90000000\n\n",
             "100 16666666 100layer#0=1 200layer#0=2 333< 333layer#0=1 333> 500| 503< "
             "503layer#0=0 503> 670| 750layer#0=1 750< 750layer#0=0 750> 840| to 840; layer#0*3 ; "
             "present times minus a refresh period, present times"},
    };
    for (const auto& [bytes, timeline] : cases) {
        for (const size_t maxRead : {size_t(1), size_t(64), kWhole})
            EXPECT_EQ(describe(read(bytes, {}, maxRead)), timeline) << "in reads of " << maxRead;
    }
}

TEST(TimelineTest, RecognisesLayers) {
    const std::string marks =
            "0 90 B|90|postFramebuffer;1 90 E;2 91 B|90|Slotted: 3;3 91 E;"
            "4 91 B|90|FramebufferSurface: 1;5 91 E;120 91 +Crossing;140 91 +aq:x;160 91 +oq:x;"
            "180 91 +wq:x;200 91 +iq;220 91 +x fps;240 91 +x duration;260 91 +FrameMissed;"
            "280 91 +PrevFrameMissed;300 91 +FramebufferSurface;320 91 +VSP-mode;"
            "340 91 +VirtualDisplaySurface-1;360 91 +HW_VSYNC_ON_0;380 91 +VSYNC-app;"
            "500 90 C|90|OnMain|1;501 90 C|90|OnMain|0;502 91 C|90|OnBinder|1;"
            "503 91 C|90|OnBinder|0;504 7 C|77|Elsewhere|1;505 90 C|77|Elsewhere|0;"
            "900 90 C|90|Slotted|1;";
    EXPECT_EQ(layersOf(read(trace(marks))), "Slotted#0*1 Crossing#0*1 ");
    EXPECT_EQ(layersOf(read(trace(marks + "950 91 +BufferTX - Newer#12;"))), "Newer#12*1 ");
}

TEST(TimelineTest, ChoosesTheSourceOfThePeriod) {
    std::string marks;
    for (int i = 0; i < 20; ++i)
        marks += std::to_string(i * 167) + " 91 +BufferTX - a#0;";
    const std::tuple<const char*, int, int, const char*, int64_t> steps[] = {
            {"HW_VSYNC_ON_0", 100, 0, "frame intervals, as the trace has no vsyncs", kPeriod60Ns},
            {"VSYNC-sf", 222, 0, "frame intervals, as the trace has no vsyncs", kPeriod60Ns},
            {"HW_VSYNC_0", 111, 0, "HW_VSYNC_0 toggles", kPeriod90Ns},
            {"VSYNC", 83, 0, "VSYNC toggles", kPeriod120Ns},
            {"VSYNC-app", 200, 0, "VSYNC-app toggles", 20'000'000},
            {"VSR-setPeriod", 100, 11'000'000, "VSR-setPeriod", kPeriod90Ns},
    };
    int time = 10'000;
    for (const auto& [counter, interval, value, source, periodNs] : steps) {
        for (int i = 0; i < 6; ++i)
            marks += fmt::format("{} 92 C|90|{}|{};", time += interval, counter, value + i % 2);
        const Timeline timeline = read(trace(marks));
        EXPECT_EQ(periodSourceText(timeline.periodSource, timeline.periodCounter), source);
        EXPECT_EQ(timeline.events[0].periodNs, periodNs) << source;
    }
    EXPECT_EQ(read(trace(marks), {{}, 59.94}).events[0].periodNs, 16'683'350);
}

TEST(TimelineTest, FindsTheRequestedLayer) {
    const std::string text =
            trace("0 91 +BufferTX - StatusBar;100 91 +BufferTX - com.a/com.a.Main#7;"
                  "200 91 +BufferTX - com.a/com.a.Main#7;300 91 +BufferTX - Wall#1;"
                  "400 91 +BufferTX - Wall#1;500 91 +BufferTX - Other;");
    EXPECT_EQ(read(text).focusedLayer, 1u);
    EXPECT_EQ(read(text, {"Other", {}}).focusedLayer, 3u);
    EXPECT_EQ(warningsOf(text, {"com.a.Main", {}}),
              Texts{": no layer 'com.a.Main' has frames; the closest names are "
                    "'com.a/com.a.Main#7', 'StatusBar#0', 'Wall#1'"});
    EXPECT_EQ(layersOf(read("16666666\n5\t60000\t5\n", {"com.a#7", {}})), "com.a#7*1 ");
}

}  // namespace
}  // namespace brevold::trace
