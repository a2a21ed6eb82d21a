// From an input's bytes to a timeline: the lines of a trace, the activity of the compositor,
// errors and warnings.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/inputs.h"
#include "tests/packed.h"
#include "tests/pages.h"
#include "trace/refresh_period.h"

namespace brevold::trace {
namespace {

using namespace test;

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

TEST(TimelineTest, ReportsErrorsAndWarnings) {
    const std::string event = "a-7 [001] 1.0: sched_wakeup: comm=b\n";
    const std::string start = trace("40 9 C|9|BufferTX - a|3;50 9 C|9|BufferTX - a|2;");
    const std::string early = trace("0 9 E;");
    const std::string whole = gzip(start);
    const std::string page = pageOf(start);
    const std::string record = "; record the trace with graphics events";
    const std::string noCompositor =
            ": no process has compositions, vsync counters or buffer counters" + record + " (gfx)";
    const std::string pageCutShort =
            ": expected the end of a script element, got the end of the page; was the file cut "
            "short?";
    const auto backInTime = [](int lines) {
        return fmt::format("lines skipped because they go back in time: {}, the first in line 3",
                           lines);
    };
    const auto entries = [](const char* counts) {
        return fmt::format("# entries-in-buffer/entries-written: {}   #P:4\n", counts);
    };
    const std::pair<std::string, std::string> cases[] = {
            {"", ": expected ftrace text, got no bytes; was anything recorded?"},
            {"# tracer\nhello [1] x\n", ": expected ftrace text, got no line with an event"},
            {event, noCompositor},
            {trace("0 90 C|90|VSYNC|1;"), ": no layer has frames" + record},
            {event + std::string(1, '\0') + "\n",
             ": expected text, got binary data at byte 36; copy the file again"},
            {trace("0 91 +crosses threads;100 91 +crosses threads;"), noCompositor},
            {whole.substr(0, whole.size() - 1),
             ": expected more gzip data, got the end of the file; was the file cut short?"},
            {whole.substr(0, whole.size() - 8) + "12345678",
             ": the gzip data is damaged; copy the file again"},
            {page.substr(0, page.size() - 30), pageCutShort},
            {oldPageOf(start).substr(0, 100), pageCutShort},
            {pageOf("USER PID\n"),
             ": expected a page with ftrace text, found none in it; was tracing enabled?"},
            {"16666666\n0\t0\t0\n5\t9223372036854775807\t6\n",
             ": expected rows of presented frames, got none; was the layer drawing?"},
            {event + std::string(300'000, 'x') + "\n",
             ":2: expected a line of at most 262144 bytes, got a longer one"},
            {start + early + early + early,
             ":3: expected ascending times, got mostly earlier ones from here on; is the time of a "
             "line above wrong?"},
            {"999999\n", ":1: expected a refresh period of 1000000 to 1000000000 ns, got '999999'"},
            {start + trace("60 7 C|7|a;61 7 C|7|a|9223372036854775808;"),
             "counters skipped because their value is not a number: 2, the first in line 3"},
            {entries("30624/87143") + start +
                     "a-7 [000] 0.005: x: y\na-7 [002] 0.3: x: y\na-7 [001] 0.4: x: y\n",
             "the recorder's buffer was full and lost its oldest events: 56519; the trace is "
             "whole from 0.40 s on"},
            {entries("4/4") + start + "a-7 [1] 0.4: x: y\n", ""},
            {start + trace("60 19 C|19|BufferTX - a|1;61 19 C|19|BufferTX - a|2;"),
             "another process has marks of a compositor too: 2 of process 19; process 9 was taken "
             "as the compositor"},
            {start + trace("60 19 C|19|BufferTX - a|1;61 8 C|8|many|1;62 8 C|8|others|2;"), ""},
            {start + early, ""},
            {start + early + early, backInTime(2)},
            {start + early + trace("60 9 C|9|BufferTX - a|1;"), backInTime(1)},
            {"capturing trace... done\n" + start + "a-7 [001] 99999999999.0: 0: beyond 64 bits\n" +
                     "a-99999999999 [001] 4.0: 0: beyond 32 bits\n" +
                     "a-7 [001] 4.0000000001: 0: ten decimals\nstray\n",
             "lines that are not trace events: 5, the first in line 1"},
            {start + trace("60 9 C|9|BufferTX - a|0;70 9 C|9|BufferTX - a|-1;"
                           "80 9 C|9|BufferTX - a|0;90 9 C|9|BufferTX - a|2;"),
             "queue depths below 0, taken as 0: 1, the first in line 4\n"
             "queue depths that change by more than one: 2, the first in line 3"},
            {"16666666\n5\t6000\t5\nx\n5\t7000\t4\n5\t8000\t9000000000000000001\n",
             "lines that are not rows of a latency dump: 2, the first in line 3\n"
             "rows skipped because they go back in time: 1, the first in line 4"},
    };
    for (const auto& [bytes, problems] : cases) {
        Timeline timeline;
        const std::string error = errorOf([&, &text = bytes] { timeline = read(text); });
        EXPECT_EQ(error.substr(error.empty() ? 0 : 5) + warningsOf(timeline), problems)
                << bytes.substr(0, 300);
    }
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
             "0 16666666 1a#0=1 11a#0=0 23< 27> 30< 40> 40< 41> 50< 51> 53< 54> to 60; a#0*1 ; "
             "composite sections, none in the trace"},
            // A composition whose end was lost ends where its thread composes or commits again.
            {trace("0 91 +BufferTX - a#19;20 90 B|90|composite 1;21 90 B|90|inner;"
                   "22 90 B|90|composite 1;23 90 B|90|postFramebuffer;30 90 B|90|commit 2;31 90 E;"
                   "32 91 B|90|composite 2;33 90 B|90|composite 3;34 90 E;35 90 E;"
                   "40 90 B|90|onMessageRefresh;41 90 B|90|postFramebuffer;"
                   "42 90 B|90|postFramebuffer;43 90 E;44 90 E;"),
             "0 16666666 0a#19=1 10a#19=0 20< 22> 22< 30> 33< 34> 40< 44> to 44; a#19*1 ; "
             "composite sections, none in the trace"},
            // Lines that are up to a millisecond late.
            {trace("100 91 C|90|BufferTX - a#1|1;130 90 B|90|commit;132 90 C|90|BufferTX - a#1|0;"
                   "140 90 E;132 91 C|90|BufferTX - a#1|1;132 91 C|90|BufferTX - a#1|2;"
                   "132 91 C|90|BufferTX - a#1|3;130 92 C|90|VSYNC-sf|1;"
                   "131 92 C|90|VSYNC-sf|0;129 92 C|90|VSYNC-sf|1;150 90 B|90|commit;"
                   "141 90 C|90|BufferTX - a#1|2;151 90 E;"),
             "100 16666666 100a#1=1 130< 130| 131| 132a#1=0 132a#1=1 132a#1=2 132a#1=3 140> "
             "141a#1=2 150< 151> to 151; a#1*4 ; commit sections, VSYNC-sf"},
            {"a-91 [0] 2.0005: 0: C|90|BufferTX - a#1|1\na-91 [1] 2.0: x: y\n",
             "20000 16666666 20005a#1=1 to 20005; a#1*1 ; latches, none in the trace"},
            // A rise on the compositor's thread is not a frame, unless every rise is on it.
            {trace("0 91 C|90|BufferTX - a#1|1;9 90 C|90|BufferTX - a#1|2;10 90 B|90|commit;"
                   "10 90 C|90|BufferTX - a#1|0;11 90 E;12 90 C|90|BufferTX - own#2|1;"),
             "0 16666666 0a#1=1 9a#1=2 10< 10a#1=0 11> 12own#2=1 to 12; a#1*1 own#2*0 ; "
             "commit sections, none in the trace"},
            {trace("0 90 C|90|BufferTX - a#1|1;10 90 B|90|commit;10 90 C|90|BufferTX - a#1|0;"
                   "11 90 E;"),
             "0 16666666 0a#1=1 10< 10a#1=0 11> to 11; a#1*1 ; commit sections, none in the trace"},
            // Without compositions, latches replace them.
            {trace("0 91 +BufferTX - a#1;41 91 +BufferTX - b#2;60 91 C|90|BufferTX - a#1|1;"
                   "90 90 C|90|BufferTX - a#1|0;100 91 +BufferTX - b#2;"),
             "0 16666666 0a#1=1 10< 10a#1=0 10> 41b#2=1 51< 51b#2=0 60a#1=1 90a#1=0 90> 100b#2=1 "
             "110< 110b#2=0 110> to 110; a#1*2 b#2*2 ; latches, none in the trace"},
            // The display changes from 120 to 60 Hz, after a predicted period that is an outlier.
            {trace("0 91 +BufferTX - a#0;0 92 C|90|VSP-period 7|8333333;"
                   "400 92 C|90|VSP-period 7|8300000;483 92 C|90|VSP-period 7|9500000;"
                   "566 92 C|90|VSP-period 7|8400000;2490 92 C|90|VSP-period 7|16666666;"),
             "0 8333333 0a#0=1 10< 10a#0=0 10> 2490 16666666 to 2490; a#0*1 ; latches, none in the "
             "trace"},
            // Ready after the present: queued at the desired present, not before the frame above.
            {"16666666\n30000000\t50000000\t20000000\n40000000\t66700000\t90000000\n"
             "10000000\t84000000\t99000000\n0\t100700000\t110000000\n",
             "200 16666666 200layer#0=1 333< 333layer#0=0 333> 400layer#0=1 400layer#0=2 500| 500< "
             "500layer#0=1 500> 667| 673< 673layer#0=0 673> 840| 1007layer#0=1 1007< 1007layer#0=0 "
             "1007> 1007| to 1007; layer#0*4 ; present times minus a refresh period, present "
             "times"},
            // The fourth frame is ready late; the first row is unused, the last two are pending.
            {"WARNING: something\n16700000\n0\t0\t0\n5\t50000000\t10000000\n5\t67000000\t20000000\n"
             "5\t84000000\t75000000\n90000000\t9223372036854775807\t80000000\n0\t0\t90000000\n\n",
             "100 16666666 100layer#0=1 200layer#0=2 333< 333layer#0=1 333> 500| 503< "
             "503layer#0=0 503> 670| 750layer#0=1 750< 750layer#0=0 750> 840| to 840; layer#0*3 ; "
             "present times minus a refresh period, present times"},
    };
    for (const auto& [bytes, timeline] : cases) {
        for (const size_t maxRead : {size_t(1), size_t(64), kWhole})
            EXPECT_EQ(describe(read(bytes, {}, maxRead), 100'000), timeline)
                    << "in reads of " << maxRead;
    }
}

TEST(TimelineTest, RecognisesLayers) {
    const std::string marks =
            "0 90 B|90|postFramebuffer;1 90 E;4 91 B|90|FramebufferSurface: 1;5 91 E;"
            "6 91 B|90|NoCounter: 1;7 91 E;120 91 +Crossing;140 91 +aq:x;160 91 +oq:x;180 91 +wq:x;"
            "200 91 +iq;220 91 +x fps;240 91 +x duration;260 91 +FrameMissed;"
            "280 91 +PrevFrameMissed;300 91 +FramebufferSurface;320 91 +VSP-mode;"
            "340 91 +VirtualDisplaySurface-1;360 91 +HW_VSYNC_ON_0;380 91 +VSYNC-app;"
            "400 91 +LumaSamplingStep;420 91 +60fps;440 91 +120fps;460 91 +60fps#9;480 91 +Xfps;"
            "500 90 C|90|OnMain|1;501 90 C|90|OnMain|0;502 91 C|90|OnBinder|1;"
            "503 91 C|90|OnBinder|0;504 7 C|77|Elsewhere|1;505 90 C|77|Elsewhere|0;";
    EXPECT_EQ(layersOf(read(trace(marks))), "Crossing#0*1 60fps#9*1 Xfps#0*1 ");
    const std::string slotted = marks + "802 91 B|90|Slotted: 3;803 91 E;900 91 C|90|Slotted|1;";
    EXPECT_EQ(layersOf(read(trace(slotted))), "Slotted#0*1 ");
    EXPECT_EQ(layersOf(read("16666666\n5\t60000\t5\n", {"com.a#7", {}})), "com.a#7*1 ");
    EXPECT_EQ(layersOf(read(trace(slotted + "950 91 +BufferTX - Newer#12;"))), "Newer#12*1 ");
}

TEST(TimelineTest, ChoosesTheCompositor) {
    const auto commits = [](int pid, int tid, int count) {
        std::string marks;
        for (int i = 0; i < count; ++i)
            marks += fmt::format("{0} {1} B|{2}|commit {0};{0} {1} E;", i * 10, tid, pid);
        return marks;
    };
    const auto frame = [](int pid, int tid, int compositorTid) {
        return fmt::format("7000 {1} C|{0}|of {0}|1;7001 {2} C|{0}|of {0}|0;", pid, tid,
                           compositorTid);
    };
    const std::string frames = frame(80, 81, 80) + frame(90, 91, 93);
    // Each has to choose the thread 93 of process 90.
    const std::pair<const char*, std::string> cases[] = {
            {"most commits", commits(80, 80, 5) + commits(90, 93, 15)},
            {"a section that composes, whatever the commits",
             commits(80, 80, 15) + "5000 93 B|90|composite;5001 93 E;"},
            {"a section that composes, whatever the unrelated counters",
             "1 81 C|80|iq|1;2 81 C|80|iq|2;3 81 C|80|iq|3;5000 93 B|90|composite;5001 93 E;"},
            {"a vsync counter, whatever the commits",
             commits(80, 80, 15) + "5000 94 C|90|VSYNC-sf|1;"},
            {"slots, whatever the other counters",
             "1 81 C|80|x|1;2 81 C|80|x|2;3 81 C|80|x|3;5000 91 B|90|of 90: 1;5001 91 E;"},
            {"the thread that composes, whatever thread commits",
             commits(90, 92, 15) + "5000 93 B|90|composite;5001 93 E;"},
            {"the thread that composes most",
             "4000 92 B|90|composite;4001 92 E;5000 93 B|90|composite;5001 93 E;"
             "6000 93 B|90|composite;6001 93 E;"},
    };
    for (const auto& [what, marks] : cases) {
        TraceForm form;
        EXPECT_EQ(layersOf(read(trace(marks + frames), {}, kWhole, &form)), "of 90#0*1 ") << what;
        EXPECT_EQ(form.compositorPid, 90) << what;
        EXPECT_EQ(form.compositorTid, 93) << what;
    }
}

TEST(TimelineTest, ChoosesTheSourceOfThePeriod) {
    std::string marks;
    for (int i = 0; i < 20; ++i)
        marks += std::to_string(i * 167) + " 91 +BufferTX - a#0;";
    constexpr const char* kFrames = "frame intervals, as no counter shows the display's vsyncs";
    // Each step adds a counter: `count` values in turn, at intervals in tenths of a millisecond.
    const std::tuple<const char*, int, int, int, int, const char*, int64_t> steps[] = {
            {"HW_VSYNC_ON_0", 100, 6, 0, 1, kFrames, kPeriod60Ns},
            {"VSYNC-sf", 222, 6, 0, 1, kFrames, kPeriod60Ns},
            {"VSYNC-app", 200, 6, 0, 1, "VSYNC-app toggles", 20'000'000},
            {"VSYNC", 83, 6, 0, 1, "VSYNC toggles", kPeriod120Ns},
            {"HW_VSYNC_123", 111, 6, 0, 1, "HW_VSYNC_123 toggles", kPeriod90Ns},
            {"HW_VSYNC_456", 167, 9, 0, 1, "HW_VSYNC_456 toggles", kPeriod60Ns},
            {"VSP-period", 167, 6, 10'900'000, 11'300'000, "VSP-period values", kPeriod90Ns},
            {"VSP-period 7", 83, 7, 8'100'000, 8'500'000, "VSP-period 7 values", kPeriod120Ns},
            {"VSR-setDisplayMode 123", 1, 1, 8'333'333, 0, "VSR-setDisplayMode 123 values",
             kPeriod90Ns},
            {"VSR-setDisplayMode 456", 1, 1, 11'111'111, 0, "VSR-setDisplayMode 456 values",
             kPeriod90Ns},
            {"VSR-setPeriod", 100, 6, 16'600'000, 16'600'001, "VSR-setPeriod", kPeriod120Ns},
    };
    int time = 10'000;
    for (const auto& [counter, interval, count, value, otherValue, source, periodNs] : steps) {
        for (int i = 0; i < count; ++i)
            marks += fmt::format("{} 92 C|90|{}|{};", time += interval, counter,
                                 i % 2 ? otherValue : value);
        const Timeline timeline = read(trace(marks));
        EXPECT_EQ(report::periodSourceText(timeline.periodSource, timeline.periodCounter), source);
        EXPECT_EQ(timeline.events[0].periodNs, periodNs) << source;
    }
    EXPECT_EQ(read(trace(marks), {{}, 59.94}).events[0].periodNs, 16'683'350);
}

}  // namespace
}  // namespace brevold::trace
