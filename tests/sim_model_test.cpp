// The parts of the closed loop, and the loop against results that were derived by hand.

#include <gtest/gtest.h>

#include <cmath>

#include "sim/exact_math.h"
#include "tests/sim_test.h"

namespace brevold::sim {
namespace {

constexpr int64_t kMs = 1'000'000;
constexpr int64_t kSecondNs = 1000 * kMs;

constexpr char kDevice[] =
        "cluster.big.opp=1000 MHz 200 mW\n"
        "cluster.big.opp=500 MHz 120 mW\n"
        "cluster.big.opp=2000 MHz 900 mW\n"
        "cluster.little.opp=1000 MHz 100 mW\n"
        "app.cluster=big\ncompositor.cluster=little\n";

/** 2000 MHz down to 500 MHz, in steps of 500. */
ClusterSpec fourPoints() {
    return {"big", {{500, 100}, {1000, 200}, {1500, 400}, {2000, 900}}, 0.0, 0.0, {}};
}

TEST(ExactMathTest, AgreesWithTheMathematicalLibrary) {
    for (double x = -30; x <= 30; x += 0.37) {
        EXPECT_NEAR(exp2Exact(x) / std::exp2(x), 1, 1e-15);
        EXPECT_NEAR(expExact(x) / std::exp(x), 1, 2e-14);
        EXPECT_NEAR(logExact(std::exp(x)), x, 1e-14);
    }
}

TEST(ExactMathTest, TheLastBitDependsOnTheFirstTermOfTheSum) {
    EXPECT_EQ(exp2Exact(0.49477), 0x1.68ba8587658a2p+0);
}

TEST(ClusterTest, AFrameThatTakesNoTimeHasTheCurrentFrequency) {
    const ClusterSpec spec = fourPoints();
    const GovernorSpec governor;
    Cluster cluster(spec, governor, {});
    cluster.start(Task::App, 0, 0);
    EXPECT_EQ(cluster.meanMhz(Task::App), 500);
}

TEST(GovernorTest, ChoosesTheLowestSufficientPointWithinItsRateLimits) {
    const ClusterSpec cluster = fourPoints();
    const GovernorSpec spec;
    GovernorSpec raisedSpec;
    raisedSpec.background = 0.2;
    raisedSpec.floor = 0.6;
    Governor governor(spec, cluster, {});
    Governor raised(raisedSpec, cluster, {});
    Governor held(spec, cluster, 1);
    const std::tuple<Governor*, int64_t, double, size_t> steps[] = {
            {&governor, 0, 0.4, 1},             // 1.25 * 0.4 of 2000 MHz
            {&governor, kMs / 2 - 1, 0.41, 1},  // too early for a rise
            {&governor, kMs / 2, 0.41, 2},      //
            {&governor, kMs * 5, 0.1, 2},       // too early for a fall
            {&governor, kMs * 11 / 2, 0.1, 0},  //
            {&governor, kMs * 20, 0.81, 3},     //
            {&raised, 0, 0.0, 2},
            {&raised, kMs, 0.45, 3},
            {&held, 0, 1.0, 1},
    };
    EXPECT_EQ(raised.point(), 2u);
    for (const auto& [each, timeNs, utilisation, point] : steps) {
        each->update(timeNs, utilisation);
        EXPECT_EQ(each->point(), point) << timeNs;
    }
}

TEST(ServiceTest, ReadsScalesAndBoostsAsTheDeviceSays) {
    using host::HintKind;
    constexpr auto kCap = DownReading::Cap;
    constexpr auto kNoUp = UpReading::None;
    constexpr auto kUp = UpReading::Governor;
    const ClusterSpec cluster = fourPoints();
    const std::tuple<const char*, HintKind, double, DownReading, UpReading, size_t, size_t>
            readings[] = {
                    {"cap", HintKind::Down, 0.5, kCap, kNoUp, 3, 1},
                    {"cap rounds up", HintKind::Down, 0.51, kCap, kNoUp, 3, 2},
                    {"cap above the choice", HintKind::Down, 0.9, kCap, kNoUp, 0, 0},
                    {"scale 0", HintKind::Down, 0, kCap, kNoUp, 3, 0},
                    {"governor", HintKind::Down, 0.5, DownReading::Governor, kNoUp, 1, 0},
                    {"frame at 1000 MHz", HintKind::Down, 0.5, DownReading::Frame, kNoUp, 3, 0},
                    {"frame keeps the choice", HintKind::Down, 1, DownReading::Frame, kNoUp, 0, 0},
                    {"up", HintKind::Up, 1.4, kCap, kUp, 1, 2},
                    {"up beyond the table", HintKind::Up, 60, kCap, kUp, 0, 3},
                    {"up ignored", HintKind::Up, 60, kCap, kNoUp, 0, 0},
            };
    for (const auto& [name, kind, scale, down, up, governorPoint, point] : readings) {
        const ServiceSpec spec = {down, up, BoostTarget::Compositor, 0};
        Service service(spec);
        service.receive({0, kind, 0, 10, 0, scale, 0, 0}, 1000, 0);
        EXPECT_EQ(service.pointFor(cluster, true, false, governorPoint), point) << name;
        EXPECT_EQ(service.pointFor(cluster, false, true, governorPoint), governorPoint) << name;
        EXPECT_EQ(service.nextExpiryNs(), 10 * kMs) << name;
        service.expire(10 * kMs - 1);
        EXPECT_EQ(service.pointFor(cluster, true, false, governorPoint), point) << name;
        service.expire(10 * kMs);
        EXPECT_EQ(service.pointFor(cluster, true, false, governorPoint), governorPoint) << name;
    }
    // A boost overrides scales on its targets until its release.
    const std::tuple<BoostTarget, size_t, size_t> targets[] = {
            {BoostTarget::Compositor, 1, 3}, {BoostTarget::All, 3, 3}, {BoostTarget::None, 1, 2}};
    for (const auto& [target, appPoint, compositorPoint] : targets) {
        const ServiceSpec spec = {kCap, kUp, target, 0};
        Service service(spec);
        service.receive({0, HintKind::JankBoost, 0, 2000, 0, 10, 0, 0}, 1, 0);
        service.receive({0, HintKind::Up, 0, 10, 0, 2, 0, 0}, 1, 0);
        service.receive({0, HintKind::Down, 0, 10, 0, 0.5, 0, 0}, 1, 0);
        EXPECT_EQ(service.pointFor(cluster, true, false, 2), appPoint);
        EXPECT_EQ(service.pointFor(cluster, false, true, 2), compositorPoint);
        service.receive({0, HintKind::Release, 0, 0, 0, 0, 0, 0}, 1, kMs);
        EXPECT_FALSE(service.isBoosted());
        EXPECT_EQ(service.pointFor(cluster, false, true, 2), 2u);
        EXPECT_EQ(service.downScale(), 0.5);
        service.receive({0, HintKind::JankBoost, 0, 2000, 0, 10, 0, 0}, 1, 0);
        service.expire(2000 * kMs - 1);
        EXPECT_TRUE(service.isBoosted());
        service.expire(2000 * kMs);
        EXPECT_FALSE(service.isBoosted());
    }
}

TEST(SimulationTest, LibraryWithEveryFeatureOffChangesNothing) {
    const Device device = parseDevice(kDevice, "device", {});
    for (const std::string& name : builtInWorkloads()) {
        const Scenario scenario =
                scenarioOf({device, readWorkload(name), {}}, {}, 10 * kSecondNs, 3);
        const Metrics off = measure(scenario, {});
        const auto isSame = [&](const std::vector<std::string>& settings) {
            const Metrics metrics = measureAll({scenario}, settings).front();
            return memcmp(off.data(), metrics.data(), sizeof(off)) == 0;
        };
        EXPECT_TRUE(isSame({})) << name;
        // In the frame-rate mode of a video, energy scaling sends no hints.
        EXPECT_EQ(isSame(kScalingOn), name == "video30") << name;
    }
}

TEST(SimulationTest, ExtremesHaveDefinedResults) {
    const std::pair<const char*, double> framesPerSecond[] = {
            {"mean-ms=0\n", 60},
            {"refresh-hz=1000\nmean-ms=0.2\n", 500},
            {"mean-ms=2000\n", 0.5},
            {"buffers=2\nmean-ms=1\n", 60},
            {"pace=vsync\nmean-ms=1\nburst-min-s=1\nburst-max-s=1\ngap-min-s=3\ngap-max-s=3\n", 15},
    };
    for (const auto& [workload, expected] : framesPerSecond) {
        const Scenario scenario = makeScenario(
                "cluster.one.opp=1000 MHz 100 mW\napp.cluster=one\ncompositor.cluster=one\n",
                workload, 20 * kSecondNs);
        const Metrics metrics = measureAll({scenario}, kScalingOn).front();
        EXPECT_NEAR(at(metrics, Metric::FramesPerSecond), expected, 0.1) << workload;
        EXPECT_TRUE(std::isnan(at(metrics, Metric::CompositorPowerMw))) << "one cluster for both";
    }
}

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
    return fmt::format("refresh-hz={}\nbuffers={}\nmean-ms={}\n", hz, buffers, workMs);
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
