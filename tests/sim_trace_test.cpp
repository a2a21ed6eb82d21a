#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>

#include "replay/isolated_play.h"
#include "report/hints_csv.h"
#include "sim/trace_writer.h"
#include "tests/sim_test.h"
#include "trace/read_timeline.h"
#include "trace/string_source.h"

namespace brevold::sim {
namespace {

constexpr int64_t kSecondNs = 1'000'000'000;

std::string csvOf(const std::vector<host::Hint>& hints) {
    std::ostringstream csv;
    report::writeHintsCsv(hints, {0, kNever}, csv);
    return csv.str();
}

/** Writes the trace and keeps the hints. */
class TraceAndHints : public TraceWriter {
  public:
    using TraceWriter::TraceWriter;
    void onHint(const host::Hint& hint) override { hints.push_back(hint); }
    std::vector<host::Hint> hints;
};

TEST(SimTrace, ReplaysToTheHintsOfTheSimulation) {
    const std::vector<std::string> settings = {
            "feature.4=1",
            "feature.5=1",
            "vendor.perf.pfar.enable=1",
            "vendor.perf.pfar.down.enable=1",
            "vendor.perf.jr10.enable=1",
            "vendor.perf.fps_switch.enable=1",
            "app-type.*=2",
    };
    constexpr char kSharedCluster[] =
            "cluster.all.opp=1000 MHz 100 mW\ncluster.all.opp=2000 MHz 400 mW\n"
            "app.cluster=all\ncompositor.cluster=all\n";
    ptrdiff_t hints = 0;
    BoostDepth depth = BoostDepth::Left;
    for (const std::string& workload : builtInWorkloads()) {
        depth = depth == BoostDepth::Left ? BoostDepth::Found : BoostDepth::Left;
        SCOPED_TRACE(workload);
        const sim::Setup setup = {
                parseDevice(kSharedCluster, "device", {}), readWorkload(workload), {}};
        const Scenario scenario =
                scenarioOf(setup, {setup.device.service, depth}, 5 * kSecondNs, 1);
        const auto simulate = [&](bool returnsTrace) {
            return runInProcesses({[&] {
                                      std::ostringstream trace;
                                      TraceAndHints writer(scenario.device,
                                                           scenario.workload.periodNs(), trace);
                                      std::optional<Library> library = loadLibrary(settings);
                                      Simulation(scenario, &*library, writer).run();
                                      return returnsTrace ? trace.str() : csvOf(writer.hints);
                                  }},
                                  1)
                    .front();
        };
        const std::string simulated = simulate(false);
        hints += std::count(simulated.begin(), simulated.end(), '\n') - 1;
        trace::TraceInput input(std::make_unique<trace::StringSource>(simulate(true)), "trace");
        const trace::Timeline timeline = trace::readTimeline(input, {});
        EXPECT_TRUE(timeline.warnings.empty());
        EXPECT_EQ(csvOf(replay::playIsolated(timeline, settings, {depth}).hints), simulated);
    }
    EXPECT_GT(hints, 1000);
}

}  // namespace
}  // namespace brevold::sim
