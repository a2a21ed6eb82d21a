// Device and workload files: their entries, and one clear error for each fault.

#include <gtest/gtest.h>

#include "tests/sim_test.h"

namespace brevold::sim {
namespace {

const std::string kClusters =
        "cluster.a.opp=1000 MHz 200 mW\n"
        "cluster.b.opp=900 MHz 700 mV\n"
        "cluster.b.coefficient=550\n"
        "app.cluster=a\n"
        "compositor.cluster=b\n";

template <typename Parse>
std::string errorOf(Parse parse) {
    try {
        parse();
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

TEST(DeviceFileTest, SetsEveryEntry) {
    const Device device = parseDevice(
            "# comment\n\n  cluster.a.opp = 1500 MHz 300 mW # in any order\r\n" + kClusters +
                    "cluster.a.memory-share=0.2\ncluster.a.static-mw=5\ncompositor.work-ms=2\n"
                    "governor=fixed\ngovernor.headroom=1.5\ngovernor.half-life-ms=16\n"
                    "governor.tick-ms=1\ngovernor.up-limit-ms=2\ngovernor.down-limit-ms=20\n"
                    "governor.util-est=0\ngovernor.floor=0.1\ngovernor.background=0.2\n"
                    "governor.fixed-share=0.7\nservice.down=frame\nservice.up=none\n"
                    "service.boost=all\nservice.latency-ms=1\ndisplay.buffers=4\n"
                    "display.latch-ms=2\ncluster.b.cpus=0-2,5\ntrace.speed=0.5\n",
            "device", {"governor.floor=0.3", "cluster.a.opp=500 MHz 50 mW"});
    const ClusterSpec& a = device.clusters[device.appCluster];
    ASSERT_EQ(a.points.size(), 3u);
    EXPECT_EQ(a.points[0].mhz, 500);
    EXPECT_EQ(a.points[2].mw, 300);
    EXPECT_EQ(a.memoryShare, 0.2);
    EXPECT_EQ(a.staticMw, 5);
    EXPECT_NEAR(device.clusters[device.compositorCluster].points[0].mw, 550e-3 * 0.49 * 900, 1e-9);
    EXPECT_EQ(device.compositionWorkNs, 2'000'000);
    const GovernorSpec& governor = device.governor;
    EXPECT_EQ(governor.kind, GovernorKind::Fixed);
    EXPECT_EQ(governor.headroom, 1.5);
    EXPECT_EQ(governor.halfLifeNs, 16'000'000);
    EXPECT_EQ(governor.tickNs, 1'000'000);
    EXPECT_EQ(governor.upLimitNs, 2'000'000);
    EXPECT_EQ(governor.downLimitNs, 20'000'000);
    EXPECT_FALSE(governor.hasUtilEst);
    EXPECT_EQ(governor.floor, 0.3);
    EXPECT_EQ(governor.background, 0.2);
    EXPECT_EQ(governor.fixedShare, 0.7);
    EXPECT_EQ(device.service.down, DownReading::Frame);
    EXPECT_EQ(device.service.up, UpReading::None);
    EXPECT_EQ(device.service.boost, BoostTarget::All);
    EXPECT_EQ(device.service.latencyNs, 1'000'000);
    EXPECT_EQ(device.buffers, 4);
    EXPECT_EQ(device.latchNs, 2'000'000);
    EXPECT_EQ(device.recordedSpeed, 0.5);
    EXPECT_EQ(device.clusterOf(2), device.compositorCluster);
    EXPECT_EQ(device.clusterOf(5), device.compositorCluster);
    EXPECT_EQ(device.clusterOf(3), std::nullopt);
}

TEST(DeviceFileTest, NamesTheLineOfAnError) {
    const struct {
        const char* line;
        const char* error;
    } kCases[] = {
            {"governor", "device:6: expected key=value, got \"governor\""},
            {"governor=fast", "device:6: expected schedutil or performance or fixed, got \"fast\""},
            {"service.down=half", "device:6: expected cap or governor or frame, got \"half\""},
            {"display.buffers=1", "device:6: expected a whole number from 2 to 64, got \"1\""},
            {"governor.floor=nan", "device:6: expected a number from 0 to 1, got \"nan\""},
            {"governor.floor=0.5x", "device:6: expected a number from 0 to 1, got \"0.5x\""},
            {"cluster.a.opp=5 GHz 1 mW",
             "device:6: expected \"NUMBER MHz NUMBER mW\" or \"NUMBER MHz NUMBER mV\", got \"5 GHz "
             "1 mW\""},
            {"cluster.a.opp=1000 MHz 1 mW", "device:6: a second operating point at 1000 MHz"},
            {"cluster.a.cpus=4-3", "device:6: expected a whole number from 4 to 1023, got \"3\""},
            {"cluster.c.opp=1000 MHz 1 mV",
             "device: cluster.c.opp in mV needs cluster.c.coefficient"},
            {"cluster.c.static-mw=1", "device: cluster.c.opp is missing"},
            {"app.cluster=z", "device:6: a second app.cluster; the first is on line 4"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(errorOf([&] { parseDevice(kClusters + c.line, "device", {}); }), c.error);
    }
    EXPECT_EQ(errorOf([] { parseDevice("# nothing", "device", {}); }),
              "device: app.cluster=NAME is missing: the cluster where the application runs");
    EXPECT_EQ(errorOf([&] { parseDevice(kClusters, "device", {"app.cluster=z"}); }),
              "device: app.cluster=z: there is no cluster.z.opp");
    EXPECT_EQ(errorOf([&] { parseDevice(kClusters, "device", {"governor=x"}); }),
              "--device-set governor=x: expected schedutil or performance or fixed, got \"x\"");
    EXPECT_EQ(errorOf([&] {
                  parseDevice(kClusters + "cluster.a.mhz=1", "device", {});
              }).substr(0, 42),
              "device:6: unknown key \"cluster.a.mhz\"; the");
    EXPECT_EQ(errorOf([] { readDevice("/nowhere", {}); }),
              "/nowhere: cannot be opened: No such file or directory");
}

TEST(WorkloadFileTest, BuiltInWorkloadsDifferInEveryEntryThatNamesThem) {
    EXPECT_EQ(builtInWorkloads(),
              (std::vector<std::string>{"double60", "game120", "game60", "game60heavy", "paced60",
                                        "scroll120", "spiky60", "video30"}));
    const Workload video = readWorkload("video30");
    EXPECT_EQ(video.pace, Pace::Video);
    EXPECT_EQ(video.framePeriodNs(), 2 * 16'666'666);
    EXPECT_EQ(video.dueFrames, 3);
    EXPECT_EQ(video.buffers, 4);
    const Workload scroll = readWorkload("scroll120");
    EXPECT_EQ(scroll.pace, Pace::Vsync);
    EXPECT_EQ(scroll.periodNs(), 8'333'333);
    EXPECT_EQ(scroll.gapMaxS, 2.5);
    EXPECT_EQ(readWorkload("double60").buffers, 2);
}

TEST(WorkloadFileTest, NamesTheLineOfAnError) {
    const struct {
        const char* text;
        const char* error;
    } kCases[] = {
            {"pace=slow", "w:1: expected free or vsync or video, got \"slow\""},
            {"\nbuffers=1", "w:2: expected a whole number from 2 to 64, got \"1\""},
            {"refresh-hz=0", "w:1: expected a number from 1 to 1000, got \"0\""},
            {"# nothing\n", "w: mean-ms=MS is missing: the median work of a frame"},
            {"rho=0\n\nrho=1", "w:3: a second rho; the first is on line 1"},
            {"mean-ms=1\nspike-min=3\nspike-max=2", "w: spike-min is above spike-max"},
            {"mean-ms=1\ndue-frames=1", "w: frame-refreshes and due-frames need pace=video"},
            {"mean-ms=1\ngap-max-s=1", "w: gaps need pace=vsync"},
            {"mean-ms=1\npace=vsync\ngap-max-s=1", "w: gaps need burst-min-s above 0"},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(errorOf([&] { parseWorkload(c.text, "w"); }), c.error);
    EXPECT_EQ(errorOf([] { parseWorkload("x=1", "w"); }).substr(0, 20), "w:1: unknown key \"x\"");
    EXPECT_EQ(errorOf([] { makeScenario(kClusters, "mean-ms=1\nrefresh-hz=1000", 1); }), "");
    EXPECT_EQ(errorOf([] {
                  makeScenario(kClusters + "display.latch-ms=1", "mean-ms=1\nrefresh-hz=1000", 1);
              }),
              "display.latch-ms=1 of device is not below the refresh period of workload, 1.000 ms");
}

}  // namespace
}  // namespace brevold::sim
