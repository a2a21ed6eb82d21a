#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "replay/isolated_play.h"
#include "sim/trace_writer.h"
#include "tests/inputs.h"
#include "tests/sim_test.h"

namespace brevold::sim {
namespace {

constexpr int64_t kSecondNs = 1'000'000'000;

/** Writes the trace, and keeps the hints and the work of each frame. */
class Recorder : public TraceWriter {
  public:
    using TraceWriter::TraceWriter;
    void onHint(const host::Hint& hint) override { hints.push_back(hint); }
    void onQueue(int64_t nowNs, const Frame& frame, int32_t depth) override {
        TraceWriter::onQueue(nowNs, frame, depth);
        workNs.push_back(frame.workNs);
    }
    std::vector<host::Hint> hints;
    std::vector<int64_t> workNs;
};

std::string linesOf(const std::vector<host::Hint>& hints) {
    std::string lines;
    for (const host::Hint& hint : hints)
        lines += fmt::format("{} {} {} {}\n", hint.timeNs, hint.identifier, hint.durationMs,
                             hint.type);
    return lines;
}

TEST(SimTraceTest, AReplaySendsTheHintsOfTheSimulation) {
    std::vector<std::string> settings = kScalingOn;
    settings.insert(settings.end(), {"feature.4=1", "vendor.perf.jr10.enable=1",
                                     "vendor.perf.fps_switch.enable=1"});
    constexpr char kSharedCluster[] =
            "cluster.all.opp=1000 MHz 100 mW\ncluster.all.opp=2000 MHz 400 mW\n"
            "app.cluster=all\ncompositor.cluster=all\n";
    ptrdiff_t hints = 0;
    BoostDepth depth = BoostDepth::Left;
    for (const std::string& workload : builtInWorkloads()) {
        depth = depth == BoostDepth::Left ? BoostDepth::Found : BoostDepth::Left;
        const sim::Setup setup = {
                parseDevice(kSharedCluster, "device", {}), readWorkload(workload), {}};
        const Scenario scenario =
                scenarioOf(setup, {setup.device.service, depth}, 5 * kSecondNs, 1);
        const auto simulate = [&](bool returnsTrace) -> Job {
            return [&, returnsTrace] {
                std::ostringstream trace;
                Recorder recorder(scenario.device, scenario.workload.periodNs(), trace);
                std::optional<Library> library = loadLibrary(settings);
                Simulation(scenario, &*library, recorder).run();
                return returnsTrace ? trace.str() : linesOf(recorder.hints);
            };
        };
        const std::vector<std::string> simulated =
                runSimulations({simulate(false), simulate(true)}, 2);
        hints += std::count(simulated[0].begin(), simulated[0].end(), '\n');
        trace::TraceInput input = test::inputOf(simulated[1]);
        const trace::Timeline timeline = trace::readTimeline(input, {});
        EXPECT_TRUE(timeline.warnings.empty()) << workload;
        EXPECT_EQ(linesOf(replay::playIsolated(timeline, settings, {depth}).hints), simulated[0])
                << workload;
    }
    EXPECT_GT(hints, 1000);
}

std::string without(const std::string& text, const std::vector<std::string>& words) {
    std::istringstream lines(text);
    std::string rest;
    for (std::string line; std::getline(lines, line);) {
        const auto isInLine = [&](const std::string& word) { return line.find(word) != line.npos; };
        if (std::none_of(words.begin(), words.end(), isInLine)) rest += line + '\n';
    }
    return rest;
}

TEST(SimTraceTest, TheWorkReadFromATraceIsThatOfTheSimulation) {
    constexpr char kDevice[] =
            "cluster.big.opp=600 MHz 80 mW\ncluster.big.opp=1400 MHz 260 mW\n"
            "cluster.big.opp=2800 MHz 1190 mW\ncluster.big.memory-share=0.2\n"
            "cluster.little.opp=1800 MHz 120 mW\ncluster.big.cpus=4-6,7\n"
            "cluster.little.cpus=0-3\napp.cluster=big\ncompositor.cluster=little\n";
    constexpr auto kRun = WorkMethod::RunningTime;
    constexpr auto kDequeue = WorkMethod::DequeueToQueue;
    constexpr auto kLatch = WorkMethod::LatchToQueue;
    const std::vector<std::string> kOtherCpus = {"cluster.big.cpus=1", "trace.speed=0.5"};
    using Words = std::vector<std::string>;
    // The workload, the governor, words of lines that the trace omits, entries of the device that
    // reads it, the method, the factor of the work, and the maximum number of frames without work.
    const std::tuple<const char*, const char*, Words, Words, WorkMethod, double, int32_t> cases[] =
            {
                    {"spiky60", "schedutil", {}, {}, kRun, 1, 0},
                    {"paced60", "schedutil", {}, {}, kRun, 1, 0},
                    {"video30", "schedutil", {}, {}, kRun, 1, 0},
                    {"scroll120", "schedutil", {}, {}, kRun, 1, 0},
                    {"spiky60", "schedutil", {"sched_"}, {}, kDequeue, 1, 0},
                    {"game60", "schedutil", {"sched_", "ueueBuffer"}, {}, kLatch, 1, 20},
                    {"game60", "performance", {"cpu_freq"}, {"trace.speed=0.5"}, kRun, 0.5, 0},
                    {"game60", "performance", {}, kOtherCpus, kRun, 0.5, 0},
            };
    for (const auto& [name, governor, omitted, settings, method, factor, maxUnmeasured] : cases) {
        SCOPED_TRACE(fmt::format("{} read by method {}, factor {}", name,
                                 wordOf(method, kWorkMethodWords), factor));
        const Device device = parseDevice(kDevice, "device", {std::string("governor=") + governor});
        const Scenario written =
                scenarioOf({device, readWorkload(name), {}}, {}, 10 * kSecondNs, 1);
        std::ostringstream text;
        Recorder recorder(device, written.workload.periodNs(), text);
        Simulation(written, nullptr, recorder).run();

        trace::TraceInput input = test::inputOf(without(text.str(), omitted));
        const RecordedWork work =
                readRecordedWork(input, {}, parseDevice(kDevice, "device", settings));
        EXPECT_EQ(work.method, method);
        EXPECT_EQ(work.assumedSpeed.has_value(), factor != 1);
        ASSERT_EQ(work.threads.size(), method == kRun ? 1u : 0u);
        for (const RecordedWork::Thread& thread : work.threads)
            EXPECT_EQ(thread.name, "com.example.sim");
        EXPECT_LE(work.unmeasuredFrames, maxUnmeasured);
        // The first frame has no queue before it.
        ASSERT_EQ(work.frames.size(), recorder.workNs.size() - 1);
        int32_t different = 0;
        double shares = 0;
        for (size_t i = 0; i < work.frames.size(); ++i) {
            const double expected = factor * static_cast<double>(recorder.workNs[i + 1]);
            const double share = static_cast<double>(work.frames[i].workNs) / expected;
            different += std::abs(share - 1) > 0.01 ? 1 : 0;
            shares += share;
        }
        EXPECT_LE(different, work.unmeasuredFrames);
        EXPECT_NEAR(shares / static_cast<double>(work.frames.size()), 1, 0.02);
    }
}

}  // namespace
}  // namespace brevold::sim
