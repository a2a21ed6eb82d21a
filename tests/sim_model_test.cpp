// The parts of the closed loop, each on its own.

#include <gtest/gtest.h>

#include <cmath>

#include "sim/exact_math.h"
#include "sim/sweep_plot.h"
#include "tests/sim_test.h"

namespace brevold::sim {
namespace {

constexpr int64_t kMs = 1'000'000;
constexpr int64_t kSecondNs = 1000 * kMs;

constexpr char kDevice[] =
        "cluster.big.opp=1000 MHz 200 mW\n"
        "cluster.big.opp=500 MHz 120 mW\n"
        "cluster.big.opp=2000 MHz 900 mW\n"
        "cluster.little.opp=1000 MHz 1000 mV\n"
        "cluster.little.opp=500 MHz 50 mW\n"
        "app.cluster=big\ncompositor.cluster=little\n";

/** 2000 MHz down to 500 MHz, in steps of 500. */
ClusterSpec fourPoints(double memoryShare = 0.0) {
    return {"big", {{500, 100}, {1000, 200}, {1500, 400}, {2000, 900}}, memoryShare, 0.0, {}};
}

TEST(ExactMathTest, AgreesWithTheMathematicalLibrary) {
    for (double x = -30; x <= 30; x += 0.37) {
        EXPECT_NEAR(exp2Exact(x) / std::exp2(x), 1, 1e-15);
        EXPECT_NEAR(expExact(x) / std::exp(x), 1, 2e-14);
        EXPECT_NEAR(logExact(std::exp(x)), x, 1e-14);
    }
}

TEST(ExactMathTest, RandomNumbersHaveTheirMoments) {
    const Random random(1);
    double sum = 0, squares = 0, uniforms = 0, beyondTwo = 0;
    constexpr int kCount = 100'000;
    for (uint64_t i = 0; i < kCount; ++i) {
        const double normal = random.normal(Stream::Work, i);
        sum += normal;
        squares += normal * normal;
        beyondTwo += std::abs(normal) > 2 ? 1 : 0;
        uniforms += random.uniform(Stream::GpuWork, i);
    }
    EXPECT_NEAR(sum / kCount, 0, 0.01);
    EXPECT_NEAR(squares / kCount, 1, 0.02);
    EXPECT_NEAR(beyondTwo / kCount, 0.0455, 0.002);
    EXPECT_NEAR(uniforms / kCount, 0.5, 0.005);
}

TEST(WorkTest, DependsOnTheFrameAlone) {
    const Workload workload = readWorkload("spiky60");
    WorkSource all(workload, 5);
    WorkSource some(workload, 5);
    WorkSource otherSeed(workload, 6);
    int equal = 0;
    for (int64_t i = 0; i < 2000; ++i) {
        const FrameWork work = all.frame(i);
        if (i % 7 == 3) {
            EXPECT_EQ(some.frame(i).workNs, work.workNs);
        }
        equal += otherSeed.frame(i).workNs == work.workNs ? 1 : 0;
    }
    EXPECT_EQ(equal, 0);
}

TEST(ClusterTest, SpeedAndPointsFollowTheTable) {
    const ClusterSpec scaling = fourPoints();
    const ClusterSpec bound = fourPoints(0.5);
    EXPECT_DOUBLE_EQ(scaling.speedAt(1), 0.5);
    EXPECT_DOUBLE_EQ(bound.speedAt(1), 1 / (0.5 / 0.5 + 0.5));
    const struct {
        double mhz;
        size_t point;
    } kCases[] = {{-1, 0}, {0, 0}, {500, 0}, {500.1, 1}, {1999, 3}, {2000, 3}, {9000, 3}};
    for (const auto& c : kCases) {
        EXPECT_EQ(scaling.pointForMhz(c.mhz), c.point) << c.mhz;
    }
}

TEST(ClusterTest, CompletesExactlyAcrossChangesOfFrequency) {
    const ClusterSpec spec = fourPoints();
    GovernorSpec governor;
    governor.kind = GovernorKind::Performance;
    Cluster cluster(spec, governor, {});
    cluster.restartEnergy(0);
    cluster.start(Task::App, 10 * kMs, 0);
    EXPECT_EQ(cluster.completionNs(Task::App), 10 * kMs);
    EXPECT_EQ(cluster.completionNs(Task::Compositor), kNever);
    cluster.setPoint(0, 4 * kMs);
    EXPECT_EQ(cluster.completionNs(Task::App), 28 * kMs);
    cluster.setPoint(1, 8 * kMs);
    EXPECT_EQ(cluster.completionNs(Task::App), 18 * kMs);
    cluster.finish(Task::App, 18 * kMs);
    EXPECT_FALSE(cluster.isBusy());
    EXPECT_DOUBLE_EQ(cluster.meanMhz(Task::App), (4 * 2000 + 4 * 500 + 10 * 1000) / 18.0);
    // The sum over the points of power and time spent there.
    EXPECT_DOUBLE_EQ(cluster.energyMj(30 * kMs), (4 * 900 + 4 * 100 + 10 * 200) / 1e3);
    cluster.start(Task::App, 0, 30 * kMs);
    EXPECT_EQ(cluster.meanMhz(Task::App), 1000) << "of a frame that takes no time";
}

TEST(GovernorTest, UtilisationHasItsHalfLifeAndIsInvariantToFrequency) {
    GovernorSpec spec;
    Utilisation full(spec);
    Utilisation half(spec);
    full.runFor(32.0 * kMs, 1.0);
    half.runFor(64.0 * kMs, 0.5);
    EXPECT_NEAR(full.value(), 0.5, 1e-12);
    EXPECT_NEAR(half.value(), 0.5, 1e-12);
    full.idleFor(64.0 * kMs);
    EXPECT_NEAR(full.value(), 0.125, 1e-12);
}

TEST(GovernorTest, EstimateOfTheLastRunsCountsFromTheWakeUp) {
    GovernorSpec spec;
    Utilisation utilisation(spec);
    utilisation.wakeUp();
    utilisation.runFor(64.0 * kMs, 1.0);
    utilisation.sleep();
    utilisation.idleFor(320.0 * kMs);
    EXPECT_LT(utilisation.value(), 0.001);
    utilisation.wakeUp();
    EXPECT_NEAR(utilisation.value(), 0.75, 1e-12);
    utilisation.sleep();  // without work: the average falls by a quarter of the difference
    utilisation.wakeUp();
    EXPECT_NEAR(utilisation.value(), 0.75 * 0.75, 0.001);
}

TEST(GovernorTest, ChoosesTheLowestSufficientPointWithinItsRateLimits) {
    const ClusterSpec cluster = fourPoints();
    GovernorSpec spec;
    Governor governor(spec, cluster, {});
    const struct {
        int64_t timeNs;
        double utilisation;
        size_t point;
    } kSteps[] = {
            {0, 0.4, 1},             // 1.25 * 0.4 of 2000 MHz
            {kMs / 2 - 1, 0.41, 1},  // too early for a rise
            {kMs / 2, 0.41, 2},      //
            {kMs * 5, 0.1, 2},       // too early for a fall
            {kMs * 11 / 2, 0.1, 0},  //
            {kMs * 20, 0.81, 3},     //
    };
    for (const auto& step : kSteps) {
        governor.update(step.timeNs, step.utilisation);
        EXPECT_EQ(governor.point(), step.point) << step.timeNs;
    }
    spec.background = 0.2;
    spec.floor = 0.6;
    Governor raised(spec, cluster, {});
    EXPECT_EQ(raised.point(), 2u);
    raised.update(0, 0.0);
    EXPECT_EQ(raised.point(), 2u);
    raised.update(kMs, 0.45);
    EXPECT_EQ(raised.point(), 3u);
    Governor held(spec, cluster, 1);
    held.update(0, 1.0);
    EXPECT_EQ(held.point(), 1u);
}

host::Hint hint(host::HintKind kind, double scale, int32_t durationMs) {
    return {0, kind, 0, durationMs, 0, scale, 0, 0};
}

TEST(ServiceTest, ReadsScalesAndBoostsAsTheDeviceSays) {
    using host::HintKind;
    const ClusterSpec cluster = fourPoints();
    const struct {
        const char* name;
        HintKind kind;
        double scale;
        DownReading down;
        UpReading up;
        size_t governorPoint;
        size_t point;
    } kCases[] = {
            {"cap", HintKind::Down, 0.5, DownReading::Cap, UpReading::None, 3, 1},
            {"cap rounds up", HintKind::Down, 0.51, DownReading::Cap, UpReading::None, 3, 2},
            {"cap above the choice", HintKind::Down, 0.9, DownReading::Cap, UpReading::None, 0, 0},
            {"scale 0", HintKind::Down, 0, DownReading::Cap, UpReading::None, 3, 0},
            {"governor", HintKind::Down, 0.5, DownReading::Governor, UpReading::None, 1, 0},
            {"frame at 1000 MHz", HintKind::Down, 0.5, DownReading::Frame, UpReading::None, 3, 0},
            {"frame keeps the choice", HintKind::Down, 1, DownReading::Frame, UpReading::None, 0,
             0},
            {"up", HintKind::Up, 1.4, DownReading::Cap, UpReading::Governor, 1, 2},
            {"up beyond the table", HintKind::Up, 60, DownReading::Cap, UpReading::Governor, 0, 3},
            {"up ignored", HintKind::Up, 60, DownReading::Cap, UpReading::None, 0, 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const ServiceSpec spec = {c.down, c.up, BoostTarget::Compositor, 0};
        Service service(spec);
        service.receive(hint(c.kind, c.scale, 10), 1000, 0);
        EXPECT_EQ(service.pointFor(cluster, true, false, c.governorPoint), c.point);
        EXPECT_EQ(service.pointFor(cluster, false, true, c.governorPoint), c.governorPoint);
        EXPECT_EQ(service.nextExpiryNs(), 10 * kMs);
        service.expire(10 * kMs);
        EXPECT_EQ(service.pointFor(cluster, true, false, c.governorPoint), c.governorPoint);
    }
}

TEST(ServiceTest, BoostOverridesScalesOnItsTargetsUntilItsRelease) {
    using host::HintKind;
    const ClusterSpec cluster = fourPoints();
    const struct {
        BoostTarget target;
        size_t appPoint;
        size_t compositorPoint;
    } kCases[] = {
            {BoostTarget::Compositor, 1, 3}, {BoostTarget::All, 3, 3}, {BoostTarget::None, 1, 2}};
    for (const auto& c : kCases) {
        const ServiceSpec spec = {DownReading::Cap, UpReading::Governor, c.target, 0};
        Service service(spec);
        service.receive(hint(HintKind::JankBoost, 10, 2000), 1, 0);
        service.receive(hint(HintKind::Up, 2, 10), 1, 0);
        service.receive(hint(HintKind::Down, 0.5, 10), 1, 0);
        EXPECT_EQ(service.pointFor(cluster, true, false, 2), c.appPoint);
        EXPECT_EQ(service.pointFor(cluster, false, true, 2), c.compositorPoint);
        service.receive(hint(HintKind::Release, 0, 0), 1, kMs);
        EXPECT_FALSE(service.isBoosted());
        EXPECT_EQ(service.pointFor(cluster, false, true, 2), 2u);
        EXPECT_EQ(service.downScale(), 0.5);
    }
}

TEST(SweepPlotTest, FrontierLeavesOutHeldPointsThatOthersBeat) {
    const auto estimates = [](double missed, double energy, double framesPerSecond) {
        Estimates all;
        all.fill({0, 0});
        all[static_cast<size_t>(Metric::MissedPerMinute)].mean = missed;
        all[static_cast<size_t>(Metric::EnergyRatio)].mean = energy;
        all[static_cast<size_t>(Metric::FramesPerSecond)].mean = framesPerSecond;
        return all;
    };
    SetupResult result = {{parseDevice(kDevice, "d", {"cluster.little.coefficient=40"}), {}, {}},
                          estimates(0, 1, 60),
                          {},
                          {{}}};
    result.readings.front().given.estimates = estimates(1, 0.95, 60);
    result.held = {{0, estimates(0, 0.5, 30)},
                   {1, estimates(4, 0.8, 60)},
                   {2, estimates(3, 0.9, 60)},
                   {3, estimates(3.5, 0.91, 60)},
                   {4, estimates(0, 1.2, 60)}};
    EXPECT_NE(sweepPlotPage("svg", {result}).find("\n0 1.2\n3 0.9\n4 0.8\n"), std::string::npos);
}

TEST(BufferQueueTest, LendsBuffersAndLatchesReadyFramesInOrder) {
    BufferQueue queue(3);
    const auto frame = [&](int64_t gpuNs, int64_t dueNs) {
        queue.dequeue();
        queue.queue({0, 0, gpuNs, dueNs}, 100);
    };
    frame(10, 0);
    frame(10, 200);
    EXPECT_EQ(queue.depth(), 2);
    EXPECT_FALSE(queue.latch(109, 0)) << "the GPU works on it";
    EXPECT_TRUE(queue.latch(110, 0));
    EXPECT_TRUE(queue.hasFreeBuffer());
    frame(0, 0);
    EXPECT_FALSE(queue.hasFreeBuffer());
    EXPECT_FALSE(queue.latch(300, 199)) << "not due";
    EXPECT_EQ(queue.latch(300, 200)->readyNs, 120) << "the GPU works on one frame at a time";
    EXPECT_TRUE(queue.hasFreeBuffer()) << "the previous frame left the display";
}

bool areSame(const Metrics& a, const Metrics& b) {
    return memcmp(a.data(), b.data(), sizeof(a)) == 0;
}

TEST(SimulationTest, LibraryWithEveryFeatureOffChangesNothing) {
    for (const std::string& name : builtInWorkloads()) {
        SCOPED_TRACE(name);
        const sim::Setup setup = {parseDevice(kDevice, "device", {"cluster.little.coefficient=40"}),
                                  readWorkload(name),
                                  {}};
        const Scenario scenario = scenarioOf(setup, {}, 10 * kSecondNs, 3);
        const Metrics off = measure(scenario, {});
        EXPECT_TRUE(areSame(off, measureAll({scenario}, {}).front()));
        // In the frame-rate mode of a video, energy scaling sends no hints.
        EXPECT_EQ(areSame(off, measureAll({scenario}, kScalingOn).front()), name == "video30");
    }
}

TEST(SimulationTest, GivesTheSameBitsOnEveryPlatform) {
    const sim::Setup setup = {parseDevice(kDevice, "device", {"cluster.little.coefficient=40"}),
                              readWorkload("spiky60"),
                              {}};
    const Metrics metrics =
            measureAll({scenarioOf(setup, {}, 10 * kSecondNs, 3)}, kScalingOn).front();
    EXPECT_EQ(at(metrics, Metric::AppPowerMw), 0x1.7782b44d4f133p+8);
    EXPECT_EQ(at(metrics, Metric::FrameTimeSdMs), 0x1.898b69c1a9269p+1);
    EXPECT_EQ(at(metrics, Metric::HintsPerSecond), 59.5);
}

TEST(SimulationTest, ExtremesHaveDefinedResults) {
    const struct {
        const char* name;
        const char* workload;
        double framesPerSecond;
    } kCases[] = {
            {"no work", "mean-ms=0\n", 60},
            {"1000 Hz", "refresh-hz=1000\nmean-ms=0.2\n", 500},
            {"work beyond a second", "mean-ms=2000\n", 0.5},
            {"two buffers", "buffers=2\nmean-ms=1\n", 60},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Scenario scenario = makeScenario(
                "cluster.one.opp=1000 MHz 100 mW\napp.cluster=one\ncompositor.cluster=one\n",
                c.workload, 20 * kSecondNs);
        const Metrics metrics = measureAll({scenario}, kScalingOn).front();
        EXPECT_NEAR(at(metrics, Metric::FramesPerSecond), c.framesPerSecond, 0.1);
        EXPECT_TRUE(std::isnan(at(metrics, Metric::CompositorPowerMw))) << "one cluster for both";
    }
}

}  // namespace
}  // namespace brevold::sim
