// brevold-bench-replay: the costs of reading and playing a trace, of their memory, and their
// growth.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <boost/context/fiber.hpp>
#include <boost/context/fixedsize_stack.hpp>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "bench/measure.h"
#include "bench/sample_trace.h"
#include "host/device_profile.h"
#include "host/driver.h"
#include "host/workers.h"
#include "replay/player.h"
#include "replay/time_window.h"
#include "report/hints_csv.h"
#include "trace/read_timeline.h"
#include "trace/string_source.h"

namespace brevold::bench {
namespace {

constexpr Target kReadTarget = {12.0};
constexpr Target kWakeTarget = {60.0};
constexpr Target kPlayTarget = {400.0};
constexpr double kMaxBytesPerFrame = 400;
constexpr double kMaxExponent = 1.15;
constexpr int kRounds = 12;

trace::Timeline read(const std::string& text) {
    trace::TraceInput input(std::make_unique<trace::StringSource>(text), "sample");
    return readTimeline(input, {});
}

/** Returns the processor time of a call in nanoseconds. */
template <typename Call>
double timeOf(Call call) {
    const int64_t startNs = processorNs();
    call();
    return static_cast<double>(processorNs() - startNs);
}

/** Runs a function in a child process, because the library keeps its state. */
template <typename Result, typename Function>
Result inChild(Function function) {
    int pipe[2];
    if (pipe2(pipe, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
    const pid_t child = fork();
    if (child == 0) {
        const Result result = function();
        _exit(write(pipe[1], &result, sizeof(result)) == sizeof(result) ? 0 : 1);
    }
    close(pipe[1]);
    Result result;
    const ssize_t length = ::read(pipe[0], &result, sizeof(result));
    close(pipe[0]);
    waitpid(child, nullptr, 0);
    if (length != sizeof(result)) throw std::runtime_error("the measured process failed");
    return result;
}

/** Nanoseconds to play a trace and to write its hints 20 times, and the number of hints. */
struct PlayTimes {
    double play;
    double report;
    size_t hints;
};

PlayTimes playOnce(const trace::Timeline& timeline) {
    return inChild<PlayTimes>([&timeline] {
        PlayTimes times = {};
        replay::Recording recording;
        times.play = timeOf([&] { recording = replay::play(timeline, {}); });
        times.hints = recording.hints.size();
        std::ostringstream csv;
        const replay::TimeWindow all = {timeline.startNs, timeline.endNs};
        times.report = timeOf([&] {
            for (int i = 0; i < 20; ++i)
                report::writeHintsCsv(timeline, recording, all, csv);
        });
        return times;
    });
}

/** The time of a switch to a context and back. */
double switchNs() {
    constexpr int kSwitches = 100000;
    namespace context = boost::context;
    const auto body = [](context::fiber&& main) {
        while (true)
            main = std::move(main).resume();
        return std::move(main);
    };
    context::fiber other(std::allocator_arg, context::fixedsize_stack(65536), body);
    const double ns = timeOf([&other] {
        for (int i = 0; i < kSwitches; ++i)
            other = std::move(other).resume();
    });
    // The context is left as it is: it never ends.
    new context::fiber(std::move(other));
    return ns / kSwitches;
}

/** The time in which a worker wakes up, logs that it has no request, and waits again. */
double wakeNs() {
    constexpr int kWakeUps = 20000;
    host::Driver driver(host::Workers::Stepped);
    driver.init(0);
    return timeOf([] {
               for (int i = 0; i < kWakeUps; ++i) {
                   host::wakeSpuriously(0);
                   host::settle();
               }
           }) /
           kWakeUps;
}

bool printCosts() {
    const SampleTrace sample = {4000};
    const std::string text = textOf(sample);
    const trace::Timeline timeline = read(text);
    const double kib = static_cast<double>(text.size()) / 1024;
    volatile int64_t sink = 0;
    double readNs = 0;
    printCostHeader();
    bool isMet = printCost(
            "reading a KiB; counting its newlines",
            [&] { return Costs{readNs = timeOf([&] { read(text); }) / kib}; },
            [&] {
                const auto count = [&] { sink = std::count(text.begin(), text.end(), '\n'); };
                return Costs{timeOf(count) / kib};
            },
            kReadTarget, kRounds);
    const Round contextSwitch = [] { return Costs{inChild<double>(switchNs)}; };
    isMet &= printCost(
            "waking a worker; a context switch", [] { return Costs{inChild<double>(wakeNs)}; },
            contextSwitch, kWakeTarget, kRounds);
    isMet &= printCost(
            "playing a frame; a context switch",
            [&] { return Costs{playOnce(timeline).play / sample.frames}; }, contextSwitch,
            kPlayTarget, kRounds);
    printf("reading: %.0f MB/s\n", 1024e3 / readNs);
    return isMet;
}

/** Peak memory of reading and playing a trace of this many frames, in bytes. */
double peakBytes(int frames) {
    const int file = memfd_create("trace", 0);
    inChild<ssize_t>([file, frames] {
        const std::string text = textOf({frames});
        return write(file, text.data(), text.size());
    });
    return inChild<double>([file] {
        trace::TraceInput input("/proc/self/fd/" + std::to_string(file));
        replay::play(readTimeline(input, {}), {});
        rusage usage = {};
        getrusage(RUSAGE_SELF, &usage);
        return static_cast<double>(usage.ru_maxrss) * 1024;
    });
}

bool printMemory() {
    constexpr int kShort = 20000;
    constexpr int kLong = 60000;
    const double perFrame = (peakBytes(kLong) - peakBytes(kShort)) / (kLong - kShort);
    const bool isMet = perFrame <= kMaxBytesPerFrame;
    printf("peak memory: %.0f bytes a frame, at most %.0f%s\n", perFrame, kMaxBytesPerFrame,
           isMet ? "" : "  MISSED");
    return isMet;
}

/** Prints the exponent of a cost over a size, from its values at two sizes, taken alternately. */
bool printGrowth(const char* title, double sizeRatio, const std::function<double()>& atSmall,
                 const std::function<double()>& atLarge) {
    std::vector<double> exponents;
    for (int i = 0; i < kRounds; ++i)
        exponents.push_back(std::log(atLarge() / atSmall()) / std::log(sizeRatio));
    const Spread exponent = spreadOf(exponents);
    const bool isMet = exponent.low <= kMaxExponent;
    printf("%-36s %6.2f %6.2f-%6.2f %6.2f%s\n", title, exponent.median, exponent.low, exponent.high,
           kMaxExponent, isMet ? "" : "  MISSED");
    return isMet;
}

bool printGrowths() {
    printf("\n%-36s %6s %13s %6s\n", "growth", "expon.", "spread", "max");
    const std::string few = textOf({1000});
    const std::string many = textOf({8000});
    const std::string layers = textOf({8000, 512});
    const trace::Timeline fewFrames = read(few);
    const trace::Timeline manyFrames = read(many);
    // The mix of hints is the same in both, because a scale takes longer to write than a release.
    const trace::Timeline fewHints = read(textOf({1000, 1, 8}));
    const trace::Timeline manyHints = read(textOf({8000, 1, 8}));
    const double hintRatio = static_cast<double>(playOnce(manyHints).hints) /
                             static_cast<double>(playOnce(fewHints).hints);
    const auto reading = [](const std::string& text) {
        return [&text] { return timeOf([&text] { read(text); }); };
    };
    const auto playing = [](const trace::Timeline& timeline) {
        return [&timeline] { return playOnce(timeline).play; };
    };
    const auto reporting = [](const trace::Timeline& timeline) {
        return [&timeline] { return playOnce(timeline).report; };
    };
    bool isMet = printGrowth("reading, with trace length", 8, reading(few), reading(many));
    isMet &= printGrowth("playing, with trace length", 8, playing(fewFrames), playing(manyFrames));
    isMet &= printGrowth("reading, with layers", 512, reading(many), reading(layers));
    isMet &= printGrowth("writing the hints, with hints", hintRatio, reporting(fewHints),
                         reporting(manyHints));
    return isMet;
}

}  // namespace
}  // namespace brevold::bench

int main() {
    using namespace brevold::bench;
    brevold::host::turnEverythingOn();
    try {
        bool isMet = printCosts();
        isMet &= printMemory();
        return printGrowths() && isMet ? 0 : 1;
    } catch (const std::exception& error) {
        fprintf(stderr, "brevold-bench-replay: %s\n", error.what());
        return 2;
    }
}
