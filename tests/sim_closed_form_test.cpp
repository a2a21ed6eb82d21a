#include <gtest/gtest.h>

#include <cmath>
#include <complex>

#include "tests/sim_test.h"

// The closed loop against results that were derived by hand.

namespace brevold::sim {
namespace {

constexpr int64_t kSecondNs = 1'000'000'000;

constexpr char kTwoPoints[] =
        "cluster.big.opp=1000 MHz 200 mW\n"
        "cluster.big.opp=2000 MHz 900 mW\n"
        "cluster.little.opp=1000 MHz 100 mW\n"
        "app.cluster=big\ncompositor.cluster=little\ngovernor=fixed\n";

TEST(ClosedFormTest, PowerAtAFixedFrequencyIsThePowerOfThePointTimesTheBusyShare) {
    const std::tuple<const char*, double, double> cases[] = {
            {"governor.fixed-share=1\n", 900, 1},
            {"governor.fixed-share=0.5\n", 200, 0.5},
            {"governor.fixed-share=0.51\n", 900, 1},  // rounds up to a point
            {"governor.fixed-share=0.5\ncluster.big.memory-share=0.5\n", 200,
             1 / (0.5 / 0.5 + 0.5)},
    };
    const double periodMs = 1e3 / 60;
    for (const auto& [entries, busyMw, speed] : cases) {
        SCOPED_TRACE(entries);
        const Scenario scenario =
                makeScenario(std::string(kTwoPoints) + entries, "mean-ms=5\n", 60 * kSecondNs);
        const Metrics metrics = measure(scenario, {});
        const double expectedMw = busyMw * 5 / speed / periodMs;
        EXPECT_NEAR(at(metrics, Metric::AppPowerMw), expectedMw, expectedMw / 1000);
        EXPECT_NEAR(at(metrics, Metric::CompositorPowerMw), 100 * 1.2 / periodMs, 0.01);
        EXPECT_NEAR(at(metrics, Metric::FrameTimeMs), 5 / speed, 1e-5);
        EXPECT_NEAR(at(metrics, Metric::FramesPerSecond), 60, 0.02);
        EXPECT_EQ(at(metrics, Metric::MissedPerMinute), 0);
    }
}

/** Work in ms at which DOWN, read as a cap, becomes unstable at this queue depth. */
double unstableWorkMs(double periodMs, int depth) {
    const double budgetMs = depth * (periodMs - 1);
    for (double workMs = 0.1; workMs < periodMs; workMs += 0.001) {
        const double scaledMs = workMs * budgetMs / (periodMs + workMs);
        const double headroomMs = budgetMs - scaledMs;
        const double scale = periodMs / headroomMs;
        const double gain = workMs / (scale * scale);
        const double a = gain * (1 / headroomMs + periodMs / (headroomMs * headroomMs));
        const double b = gain / headroomMs;
        if ((a + std::sqrt(a * a + 4 * b)) / 2 > 1) return workMs;
    }
    return periodMs;
}

bool isStable(const Metrics& metrics) {
    return at(metrics, Metric::FrameTimeSdMs) < 0.1 * at(metrics, Metric::FrameTimeMs);
}

std::string constantWork(int hz, int buffers, double workMs) {
    return "refresh-hz=" + std::to_string(hz) + "\nbuffers=" + std::to_string(buffers) +
           "\nmean-ms=" + std::to_string(workMs) + "\n";
}

TEST(ClosedFormTest, DownAsACapBecomesUnstableAtTheWorkOfTheFormula) {
    const std::string device = fineDevice();
    for (const auto& [hz, depth] : {std::pair(60, 2), {90, 2}, {120, 2}, {60, 3}}) {
        SCOPED_TRACE(std::to_string(hz) + " Hz, depth " + std::to_string(depth));
        const double thresholdMs = unstableWorkMs(1e3 / hz, depth);
        std::vector<Scenario> scenarios;
        for (const double factor : {0.95, 1.05}) {
            scenarios.push_back(makeScenario(
                    device, constantWork(hz, depth + 1, factor * thresholdMs), 20 * kSecondNs));
        }
        const std::vector<Metrics> metrics = measureAll(scenarios, kScalingOn);
        EXPECT_TRUE(isStable(metrics[0])) << at(metrics[0], Metric::FrameTimeSdMs);
        EXPECT_FALSE(isStable(metrics[1])) << at(metrics[1], Metric::FrameTimeSdMs);
        EXPECT_LT(at(metrics[1], Metric::FrameTimeCorrelation), -0.9);
    }
}

TEST(ClosedFormTest, DownSettlesAtItsFixedPointAndAsACapMayAlternate) {
    const double periodMs = 1e3 / 60;
    const std::string device = fineDevice();
    const std::vector<Metrics> metrics = measureAll(
            {makeScenario(device, constantWork(60, 3, 2), 20 * kSecondNs),
             makeScenario(device, constantWork(60, 3, 5), 20 * kSecondNs),
             makeScenario(device + "service.down=frame\n", constantWork(60, 3, 5), 20 * kSecondNs)},
            kScalingOn);
    const double budgetMs = 2 * (periodMs - 1);
    EXPECT_NEAR(at(metrics[0], Metric::FrameTimeMs), 2 * budgetMs / (periodMs + 2), 0.02);
    EXPECT_NEAR(at(metrics[0], Metric::DownScale), periodMs / (budgetMs - 3.36), 0.002);
    EXPECT_NEAR(at(metrics[1], Metric::FrameTimeCorrelation), -1, 0.01);
    // A share of the frame's own frequency: the headroom has become one period.
    EXPECT_NEAR(at(metrics[2], Metric::FrameTimeMs), budgetMs - periodMs, 0.02);
    EXPECT_NEAR(at(metrics[2], Metric::FrameTimeSdMs), 0, 0.01);
}

}  // namespace
}  // namespace brevold::sim
