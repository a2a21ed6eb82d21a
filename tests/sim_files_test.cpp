// Device and workload files: their entries, and one clear error for each fault.

#include <gtest/gtest.h>

#include "tests/inputs.h"
#include "tests/sim_test.h"

namespace brevold::sim {
namespace {

using test::errorOf;

const std::string kClusters =
        "cluster.a.opp=1000 MHz 200 mW\n"
        "cluster.b.opp=900 MHz 700 mV\n"
        "cluster.b.coefficient=550\n"
        "app.cluster=a\n"
        "compositor.cluster=b\n";

TEST(SimFilesTest, ReadsEveryEntryOfADevice) {
    const Device device = parseDevice(
            "# comment\n\n  cluster.a.opp = 1500 MHz 300 mW # in any order\r\n" + kClusters +
                    "cluster.a.memory-share=0.2\ncluster.a.static-mw=5\ncompositor.work-ms=2\n"
                    "governor=fixed\ngovernor.headroom=1.5\ngovernor.half-life-ms=16\n"
                    "governor.tick-ms=1\ngovernor.up-limit-ms=2\ngovernor.down-limit-ms=20\n"
                    "governor.util-est=0\ngovernor.floor=0.1\ngovernor.background=0.2\n"
                    "governor.fixed-share=0.7\nservice.down=frame\nservice.up=none\n"
                    "service.boost=all\nservice.latency-ms=1\ndisplay.buffers=4\n"
                    "display.latch-ms=3\ncluster.b.cpus=0-2,5\ntrace.speed=0.5\n",
            "device", {"governor.floor=0.3", "cluster.a.opp=500 MHz 50 mW"});
    const ClusterSpec& a = device.clusters[device.appCluster];
    const GovernorSpec& governor = device.governor;
    const ServiceSpec& service = device.service;
    ASSERT_EQ(a.points.size(), 3u);
    EXPECT_EQ((std::vector<double>{a.points[0].mhz, a.points[2].mw, a.memoryShare, a.staticMw,
                                   governor.headroom, governor.floor, governor.background,
                                   governor.fixedShare, device.recordedSpeed}),
              (std::vector<double>{500, 300, 0.2, 5, 1.5, 0.3, 0.2, 0.7, 0.5}));
    EXPECT_EQ((std::vector<int64_t>{device.compositionWorkNs, governor.halfLifeNs, governor.tickNs,
                                    governor.upLimitNs, governor.downLimitNs, service.latencyNs,
                                    device.latchNs, *device.buffers}),
              (std::vector<int64_t>{2'000'000, 16'000'000, 1'000'000, 2'000'000, 20'000'000,
                                    1'000'000, 3'000'000, 4}));
    EXPECT_TRUE(governor.kind == GovernorKind::Fixed && !governor.hasUtilEst);
    EXPECT_TRUE(service.down == DownReading::Frame && service.up == UpReading::None &&
                service.boost == BoostTarget::All);
    const size_t b = device.compositorCluster;
    EXPECT_NEAR(device.clusters[b].points[0].mw, 550e-3 * 0.49 * 900, 1e-9);
    EXPECT_TRUE(device.clusterOf(2) == b && device.clusterOf(5) == b && !device.clusterOf(3));
}

std::string deviceError(const std::string& text, const std::vector<std::string>& settings = {}) {
    return errorOf([&] { parseDevice(text, "device", settings); });
}

TEST(SimFilesTest, ErrorsOfADeviceNameTheLine) {
    const std::pair<const char*, const char*> cases[] = {
            {"governor", "expected key=value, got \"governor\""},
            {"governor=fast", "expected schedutil or performance or fixed, got \"fast\""},
            {"service.down=half", "expected cap or governor or frame, got \"half\""},
            {"governor.floor=nan", "expected a number from 0 to 1, got \"nan\""},
            {"governor.floor=0.5x", "expected a number from 0 to 1, got \"0.5x\""},
            {"cluster.a.opp=5 GHz 1 mW",
             "expected \"NUMBER MHz NUMBER mW\" or \"NUMBER MHz NUMBER mV\", got \"5 GHz 1 mW\""},
            {"cluster.a.opp=1000 MHz 1 mW", "a second operating point at 1000 MHz"},
            {"cluster.a.cpus=4-3", "expected a whole number from 4 to 1023, got \"3\""},
            {"app.cluster=z", "a second app.cluster; the first is on line 4"},
    };
    for (const auto& [line, error] : cases)
        EXPECT_EQ(deviceError(kClusters + line), std::string("device:6: ") + error);
    EXPECT_EQ(deviceError(kClusters + "cluster.a.mhz=1").substr(0, 42),
              "device:6: unknown key \"cluster.a.mhz\"; the");
    EXPECT_EQ(deviceError(kClusters + "cluster.c.opp=1000 MHz 1 mV"),
              "device: cluster.c.opp in mV needs cluster.c.coefficient");
    EXPECT_EQ(deviceError(kClusters + "cluster.c.static-mw=1"), "device: cluster.c.opp is missing");
    EXPECT_EQ(deviceError("# nothing"),
              "device: app.cluster=NAME is missing: the cluster where the application runs");
    EXPECT_EQ(deviceError(kClusters, {"app.cluster=z"}),
              "device: app.cluster=z: there is no cluster.z.opp");
    EXPECT_EQ(deviceError(kClusters, {"governor=x"}),
              "--device-set governor=x: expected schedutil or performance or fixed, got \"x\"");
    EXPECT_EQ(errorOf([] { readDevice("/nowhere", {}); }),
              "/nowhere: cannot be opened: No such file or directory");
}

TEST(SimFilesTest, ARefusedNumberIsShownWithItsRange) {
    const std::pair<const char*, const char*> device[] = {
            {"compositor.work-ms=1000.1", "a number from 0 to 1000"},
            {"cluster.a.coefficient=-1", "a number from 0 to 1000000"},
            {"cluster.a.memory-share=1.01", "a number from 0 to 1"},
            {"cluster.a.static-mw=1000001", "a number from 0 to 1000000"},
            {"governor.headroom=0.99", "a number from 1 to 10"},
            {"governor.half-life-ms=0.99", "a number from 1 to 1000"},
            {"governor.tick-ms=0.09", "a number from 0.1 to 1000"},
            {"governor.up-limit-ms=-0.1", "a number from 0 to 1000"},
            {"governor.down-limit-ms=1001", "a number from 0 to 1000"},
            {"governor.util-est=2", "a whole number from 0 to 1"},
            {"governor.background=1.01", "a number from 0 to 1"},
            {"governor.fixed-share=-0.1", "a number from 0 to 1"},
            {"service.latency-ms=1001", "a number from 0 to 1000"},
            {"display.buffers=65", "a whole number from 2 to 64"},
            {"display.latch-ms=-0.1", "a number from 0 to 1000"},
            {"trace.speed=0.009", "a number from 0.01 to 1"},
    };
    const auto valueOf = [](const std::string& entry) { return entry.substr(entry.find('=') + 1); };
    for (const auto& [entry, range] : device) {
        EXPECT_EQ(deviceError(kClusters + entry),
                  fmt::format("device:6: expected {}, got \"{}\"", range, valueOf(entry)));
    }
    const std::pair<const char*, const char*> workload[] = {
            {"refresh-hz=0.9", "a number from 1 to 1000"},
            {"buffers=1", "a whole number from 2 to 64"},
            {"mean-ms=10001", "a number from 0 to 10000"},
            {"sigma=3.1", "a number from 0 to 3"},
            {"rho=-0.1", "a number from 0 to 1"},
            {"phase=1.1", "a number from 0 to 1"},
            {"spike-share=-0.1", "a number from 0 to 1"},
            {"spike-min=1001", "a number from 0 to 1000"},
            {"spike-max=1001", "a number from 0 to 1000"},
            {"gpu-ms=-1", "a number from 0 to 10000"},
            {"gpu-sigma=3.1", "a number from 0 to 3"},
            {"frame-refreshes=0", "a whole number from 1 to 1000"},
            {"due-frames=-1", "a whole number from 0 to 64"},
            {"burst-min-s=1001", "a number from 0 to 1000"},
            {"burst-max-s=-1", "a number from 0 to 1000"},
            {"gap-min-s=-1", "a number from 0 to 1000"},
            {"gap-max-s=1001", "a number from 0 to 1000"},
    };
    for (const auto& [entry, range] : workload) {
        EXPECT_EQ(errorOf([&text = entry] { parseWorkload(text, "w"); }),
                  fmt::format("w:1: expected {}, got \"{}\"", range, valueOf(entry)));
    }
}

TEST(SimFilesTest, ReadsTheBuiltInWorkloads) {
    EXPECT_EQ(builtInWorkloads(),
              (std::vector<std::string>{"double60", "game120", "game60", "game60heavy", "paced60",
                                        "scroll120", "spiky60", "video30"}));
    const Workload video = readWorkload("video30");
    EXPECT_TRUE(video.pace == Pace::Video && video.dueFrames == 3 && video.buffers == 4);
    EXPECT_EQ(video.framePeriodNs(), 2 * 16'666'666);
    const Workload scroll = readWorkload("scroll120");
    EXPECT_TRUE(scroll.pace == Pace::Vsync && scroll.gapMaxS == 2.5);
    EXPECT_EQ(scroll.periodNs(), 8'333'333);
    EXPECT_EQ(parseWorkload("mean-ms=1", "workload").buffers, 3);
}

TEST(SimFilesTest, ErrorsOfAWorkloadNameTheLine) {
    const std::pair<const char*, const char*> cases[] = {
            {"pace=slow", "w:1: expected free or vsync or video, got \"slow\""},
            {"# nothing\n", "w: mean-ms=MS is missing: the median work of a frame"},
            {"rho=0\n\nrho=1", "w:3: a second rho; the first is on line 1"},
            {"mean-ms=1\nspike-min=3\nspike-max=2", "w: spike-min is above spike-max"},
            {"mean-ms=1\ndue-frames=1", "w: frame-refreshes and due-frames need pace=video"},
            {"mean-ms=1\ngap-max-s=1", "w: gaps need pace=vsync"},
            {"mean-ms=1\npace=vsync\ngap-max-s=1", "w: gaps need burst-min-s above 0"},
    };
    for (const auto& [text, error] : cases)
        EXPECT_EQ(errorOf([&entries = text] { parseWorkload(entries, "w"); }), error);
    EXPECT_EQ(errorOf([] { parseWorkload("x=1", "w"); }).substr(0, 20), "w:1: unknown key \"x\"");
    const auto setupError = [](const std::string& entry) {
        return errorOf([&] { makeScenario(kClusters + entry, "mean-ms=1\nrefresh-hz=1000", 1); });
    };
    EXPECT_EQ(setupError(""), "");
    EXPECT_EQ(setupError("display.latch-ms=1"),
              "display.latch-ms=1 of device is not below the refresh period of workload, 1.000 ms");
}

}  // namespace
}  // namespace brevold::sim
