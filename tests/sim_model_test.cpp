// The parts of the closed loop, each on its own.

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

}  // namespace
}  // namespace brevold::sim
