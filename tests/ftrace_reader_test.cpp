#include "replay/ftrace_reader.h"

#include <gtest/gtest.h>

#include <sstream>

#include "replay/input_error.h"

namespace brevold::replay {
namespace {

using Texts = std::vector<std::string>;

/** What the reader makes of a text: one entry a mark, or the error's message. */
Texts read(const std::string& text) {
    std::istringstream input(text);
    FtraceReader reader(input, "trace");
    Texts marks;
    try {
        for (TraceMark mark; reader.next(&mark);) {
            const std::string when =
                    std::to_string(mark.timeNs) + " " + std::to_string(mark.tid) + " ";
            const std::string name = std::to_string(mark.pid) + " " + std::string(mark.name);
            switch (mark.kind) {
                case TraceMark::Kind::Begin:
                    marks.push_back(when + "B " + name);
                    break;
                case TraceMark::Kind::End:
                    marks.push_back(when + "E");
                    break;
                case TraceMark::Kind::Counter:
                    marks.push_back(when + "C " + name + "=" + std::to_string(mark.value));
                    break;
            }
        }
    } catch (const InputError& error) {
        return {error.what()};
    }
    return marks;
}

TEST(FtraceReaderTest, ReadsTheLineShapesOfAllReleases) {
    const struct {
        const char* line;
        Texts marks;
    } cases[] = {
            {" surfaceflinger-90  [000] 5.25: 0: C|90|a|1", {"5250000000 90 C 90 a=1"}},
            {"a-7 [001] 50260.929925: 0: E", {"50260929925000 7 E"}},
            {"a-7 [001] d..3 1.000001: tracing_mark_write: B|9|x y", {"1000001000 7 B 9 x y"}},
            {"a-7 ( 990) [001] .... 1.000000001: print: E|9", {"1000000001 7 E"}},
            {"<...>-7 (-----) [001] ...1 1.0: tracing_mark_write: B|9|n|x",
             {"1000000000 7 B 9 n|x"}},
            {"a b-c (1) [0]-7 [011] 1.0: 0: B|9", {"1000000000 7 B 9 "}},
            {"a-7 [001] 1.0: 0: C|9|a|b|-3", {"1000000000 7 C 9 a|b=-3"}},
            {"a-7 [001] 1.0: 0: C|9|a|2\r", {"1000000000 7 C 9 a=2"}},
            {"a-7 [001] 1.0: 0: C|9|heap|1.5|cat", {}},
            {"a-7 [001] 1.0: 0: S|9|a|2", {}},
            {"a-7 [001] 1.0: sched_wakeup: comm=C|9|a|2", {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(read(std::string("# tracer: nop\n\n") + c.line + "\n"), c.marks) << c.line;
    }
}

TEST(FtraceReaderTest, SaysWhatIsWrong) {
    const std::string event = "a-7 [001] 1.0: sched_wakeup: comm=b\n";
    const struct {
        std::string text;
        const char* message;
    } cases[] = {
            {"", "trace: is empty, expected ftrace text"},
            {"# tracer: nop\nhello [1] world: x\n",
             "trace: holds no trace events, expected ftrace text"},
            {event + std::string(1, '\0') + "\n",
             "trace: is binary, expected ftrace text (it has a NUL byte at 36)"},
            {event + "a-7 [001] 1.0: 0: C|9|a|1",
             "trace:2: ends in the middle of a line; was the recording cut short?"},
            {event + "a-7 [001] 1.0: 0: C|9|a|1x\n",
             "trace:2: expected a whole number as value of the counter 'a', got '1x'"},
            {event + "a-7 [001] 1.0: 0: C|9|a\n",
             "trace:2: expected a whole number as value of the counter 'a', got ''"},
            {event + "a-7 [001] 1.0: 0: C|9|a|9223372036854775808\n",
             "trace:2: expected a whole number as value of the counter 'a', got "
             "'9223372036854775808'"},
            {event + std::string(300'000, 'x') + "\n",
             "trace:2: expected a line of ftrace text, got one of more than 262144 bytes"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(read(c.text), Texts{c.message});
}

TEST(FtraceReaderTest, CountsLinesThatItLeavesOut) {
    std::istringstream input(
            "capturing trace... done\n"
            "a-7 [001] 3.0: sched_wakeup: comm=b\n"
            "a-7 [001] 2.0: 0: B|9|earlier\n"
            "a-7 [001] 99999999999.0: 0: B|9|later than 64 bits hold\n"
            "a-99999999999 [001] 4.0: 0: B|9|thread beyond 32 bits\n"
            "a-7 [001] 4.0000000001: 0: B|9|ten decimals\n"
            "a-7 [001] 4.5: 0: E\n"
            "dummy-0000 [000] 0.0: 0: trace_event_clock_sync: parent_ts=0.0\n");
    FtraceReader reader(input, "trace");
    TraceMark mark;
    ASSERT_TRUE(reader.next(&mark));
    EXPECT_EQ(mark.kind, TraceMark::Kind::End);
    EXPECT_EQ(mark.line, 7);
    EXPECT_FALSE(reader.next(&mark));
    EXPECT_EQ(reader.startNs(), 3'000'000'000);
    EXPECT_EQ(reader.endNs(), 4'500'000'000);
    EXPECT_EQ(reader.strayLines(), 4);
    EXPECT_EQ(reader.backwardLines(), 2);
}

TEST(FtraceReaderTest, ReadsLinesAcrossItsBlocks) {
    std::string text;
    for (int i = 0; i < 20'000; ++i) {
        text += "a-7 [001] 1.0: 0: C|9|some_counter|" + std::to_string(i) + "\n";
    }
    const Texts marks = read(text);
    ASSERT_EQ(marks.size(), 20'000u);
    for (size_t i = 0; i < marks.size(); ++i) {
        ASSERT_EQ(marks[i], "1000000000 7 C 9 some_counter=" + std::to_string(i));
    }
}

}  // namespace
}  // namespace brevold::replay
