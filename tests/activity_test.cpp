// Threads, frequencies and calls of the buffer queue, from text and from Perfetto.

#include "trace/activity.h"

#include <gtest/gtest.h>

#include "tests/inputs.h"
#include "tests/proto_writer.h"

namespace brevold::trace {
namespace {

using namespace test;

std::string describe(const std::string& bytes) {
    TraceInput input = inputOf(bytes);
    const Activity activity = readActivity(input);
    std::string text;
    for (const Activity::Switch& change : activity.switches)
        text += fmt::format("{} cpu {} runs {}\n", change.timeNs, change.processor, change.tid);
    for (const Activity::Frequency& change : activity.frequencies)
        text += fmt::format("{} cpu {} at {}\n", change.timeNs, change.processor, change.khz);
    for (const Activity::BufferCall& call : activity.bufferCalls)
        text += fmt::format("{} {}/{} {} to {}\n",
                            call.kind == Activity::BufferCall::Kind::Queue ? "queue" : "dequeue",
                            call.pid, call.tid, call.beginNs, call.endNs);
    for (const int32_t tid : {41, 42, 43, 7}) {
        const bool hasProcess = activity.processes.count(tid) != 0;
        const bool hasName = activity.names.count(tid) != 0;
        text += fmt::format("{} of {} is {}\n", tid, hasProcess ? activity.processes.at(tid) : -1,
                            hasName ? activity.names.at(tid) : "");
    }
    return text;
}

constexpr char kActivity[] =
        "1000000 cpu 4 runs 41\n"
        "1200000 cpu 0 runs 7\n"
        "1300000 cpu 4 runs 42\n"
        "1900000 cpu 4 runs 0\n"
        "900000 cpu 4 at 1804800\n"
        "1500000 cpu 0 at 300000\n"
        "queue 41/41 1100000 to 1200000\n"
        "dequeue 41/42 1400000 to 1600000\n"
        "41 of 41 is game\n"
        "42 of 41 is Render ==> 1\n"
        "43 of 41 is \n"
        "7 of -1 is kworker/0:1\n";

TEST(ActivityTest, OfText) {
    EXPECT_EQ(describe(R"(
 <idle>-0  (-----) [004] .... 0.000900: cpu_frequency: state=1804800 cpu_id=4
 <idle>-0  (-----) [004] d..2 0.001000: sched_switch: prev_comm=swapper/4 prev_pid=0 prev_prio=120 prev_state=R ==> next_comm=game next_pid=41 next_prio=110
 game-41   (   41) [004] .... 0.001100: tracing_mark_write: B|41|queueBuffer - VRI[game]
 game-41   (   41) [004] .... 0.001200: tracing_mark_write: E|41
 game-41   (   41) [004] d..2 0.001300: sched_switch: prev_comm=game prev_pid=41 prev_prio=110 prev_state=S ==> next_comm=Render ==> 1 next_pid=42 next_prio=110
 <idle>-0  (-----) [000] d..2 0.001200: sched_switch: prev_comm=swapper/0 prev_pid=0 prev_prio=120 prev_state=R ==> next_comm=kworker/0:1 next_pid=7 next_prio=120
 Render ==> 1-42 (41) [004] .... 0.001400: tracing_mark_write: B|41|dequeueBuffer
 Render ==> 1-42 (41) [004] .... 0.001410: tracing_mark_write: B|41|dequeueBufferSlot
 Render ==> 1-42 (41) [004] .... 0.001420: tracing_mark_write: E|41
 kworker-7 (-----) [000] .... 0.001500: cpu_frequency: state=300000 cpu_id=0
 kworker-7 (-----) [000] .... 0.001500: cpu_frequency: state=fast cpu_id=0
 kworker-7 (-----) [000] .... 0.001500: sched_switch: prev_comm=kworker/0:1 prev_pid=7
 Render ==> 1-42 (41) [004] .... 0.001600: tracing_mark_write: E|41
 <...>-43 (41) [004] d..2 0.001900: sched_switch: prev_comm=Render prev_pid=42 prev_prio=110 prev_state=S ==> next_comm=swapper/4 next_pid=0 next_prio=120
)"),
              kActivity);
}

TEST(ActivityTest, OfPerfetto) {
    const auto packed = [](const std::vector<uint64_t>& values) {
        std::string bytes;
        for (const uint64_t value : values)
            protozero::add_varint_to_buffer(&bytes, value);
        return bytes;
    };
    const auto frequency = [](uint64_t timeNs, uint64_t khz, uint64_t cpu) {
        return Proto().number(1, timeNs).number(2, 0).message(
                11, Proto().number(1, khz).number(2, cpu));
    };
    const Proto compact = Proto().text(5, "swapper/4")
                                  .text(5, "game")
                                  .text(5, "Render ==> 1")
                                  .text(1, packed({1'000'000, 300'000, 600'000}))
                                  .text(2, packed({0, 1, 1}))
                                  .text(3, packed({41, 42, 0}))
                                  .text(6, packed({1, 2, 0}));
    const Proto rest = Proto().number(1, 4).message(4, compact);
    const Proto other = Proto().number(1, 1'200'000)
                                .number(2, 0)
                                .message(4, Proto().text(5, "kworker/0:1").number(6, 7));
    const Proto tree = Proto().message(1, Proto().number(1, 41).text(3, "game"))
                               .message(2, Proto().number(1, 42).number(3, 41))
                               .message(2, Proto().number(1, 43).number(3, 41));
    EXPECT_EQ(describe(packet(Proto().message(2, tree)) +
                       packet(ftraceBundle({frequency(900'000, 1'804'800, 4),
                                            ftraceEvent(1'100'000, 41, "B|41|queueBuffer"),
                                            ftraceEvent(1'200'000, 41, "E|41"),
                                            ftraceEvent(1'400'000, 42, "B|41|dequeueBuffer"),
                                            ftraceEvent(1'600'000, 42, "E|41")},
                                           rest)) +
                       packet(ftraceBundle({other, frequency(1'500'000, 300'000, 0)}))),
              kActivity);
}

}  // namespace
}  // namespace brevold::trace
