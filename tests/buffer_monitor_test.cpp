#include <climits>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

/** Calls the monitor itself, so that each argument is the test's own. */
struct Report {
    int queued = 2;
    std::string peer = kLayer;
    std::string layer = kLayer;
    int64_t diffSFToQB = 3000000;
    int64_t diffQB = 8000000;
    int64_t sfTime = 1;
    int64_t period = kPeriod60Ns;
};

class BufferMonitorTest : public DeviceTest {
  protected:
    void SetUp() override { startTargetApp(); }

    /** The hint and the trace label that one report in the mode of the interval leads to. */
    static std::pair<Texts, Texts> monitor(const Report& r, int64_t modeIntervalNs = kPeriod60Ns) {
        measure(modeIntervalNs);
        monitorAgain({});  // leaves a stamp
        takeCalls();
        host::takeTraceMarks();
        return monitorAgain(r);
    }

    static std::pair<Texts, Texts> monitorAgain(const Report& r) {
        android::brevoldBufferMonitor(r.queued, r.peer, r.layer, r.diffSFToQB, r.diffQB, r.sfTime,
                                      0, r.period);
        const Texts calls = takeCalls();
        return {calls, takeLabels()};
    }

    static std::string label(const char* direction, const char* scale, const char* headRoom,
                             const char* diffQB, const char* diffSFToQB, const char* queued,
                             const char* mode = "2") {
        const std::string gap(53, ' ');
        return std::string("[") + direction + "_SCALING]mode \t" + mode + " \tscale \t" + scale +
               gap + "\theadRoom \t" + headRoom + " \tdiffQB \t" + diffQB + " \tdiffSFToQB" + gap +
               "\t" + diffSFToQB + " \tlastMaxQueuedFrames \t" + queued;
    }
};

TEST_F(BufferMonitorTest, DownAsksForTheRatio) {
    const auto [calls, labels] = monitor({});
    EXPECT_EQ(calls, Texts{"hint 4166 19 0x41011a"});
    EXPECT_EQ(labels, (Texts{label("DOWN", "0.282353", "28333332", "8000000", "3000000", "2"),
                             "energyScaling[Scale:0.28]"}));
}

TEST_F(BufferMonitorTest, UpAsksAboveTwoBudgets) {
    const Report up = {1, kLayer, kLayer, 2000000, 14000000, 1, kPeriod120Ns};
    const auto [calls, labels] = monitor(up, kPeriod120Ns);
    EXPECT_EQ(calls, Texts{"hint 4166 10 0x520451"});
    EXPECT_EQ(labels, (Texts{label("UP", "1.105263", "5333333", "14000000", "2000000", "1", "4"),
                             "energyScaling[Scale:1.11]"}));
}

struct DecisionCase {
    const char* name;
    Report report;
    Texts calls;
};

TEST_F(BufferMonitorTest, Decisions) {
    const auto down = [](int queued, int64_t diffSFToQB, int64_t diffQB) {
        return Report{queued, kLayer, kLayer, diffSFToQB, diffQB, 1, kPeriod60Ns};
    };
    const DecisionCase cases[] = {
            {"capped", down(2, 3000000, 40000000), {"hint 4166 19 0x4103e8"}},
            {"exactly one", down(2, 0, 31333332), {"hint 4166 19 0x4103e8"}},
            {"three queued", down(3, 0, 23499999), {"hint 4166 19 0x4101f4"}},
            {"negative headroom", down(2, 40000000, 8000000), {"hint 4166 19 0x410000"}},
            {"zero headroom is capped", down(2, 31333332, 1), {"hint 4166 19 0x4103e8"}},
            {"undefined stays so", down(2, 31333332, 0), {"hint 4166 19 0x410000"}},
            {"negative interval", down(2, 0, -8000000), {"hint 4166 19 0x410000"}},
            {"huge queue", down(INT_MAX, 0, 0), {"hint 4166 19 0x410000"}},
            {"none queued", down(0, 3000000, 40000000), {}},
            {"less than none", down(-1, 3000000, 40000000), {}},
            {"up, exactly one", down(1, 1333332, 30000000), {}},
            {"up, above one", down(1, 1333332, 30000004), {"hint 4166 19 0x5203e8"}},
            {"up, undefined", down(1, 31333332, 0), {}},
            {"up, not capped", down(1, 1333332, 300000000), {"hint 4166 19 0x522710"}},
            {"up, negative divisor", down(1, 41333332, 300000000), {}},
            {"up, zero divisor", down(1, 31333332, 1), {"hint 4166 19 0x52ffff"}},
            {"peer is a prefix", {2, "com", kLayer}, {}},
            {"peer is longer", {2, std::string(kLayer) + "1", kLayer}, {}},
    };
    for (const DecisionCase& c : cases)
        EXPECT_EQ(monitor(c.report).first, c.calls) << c.name;
}

TEST_F(BufferMonitorTest, TheModeMustAgreeWithThePeriodToTheNanosecond) {
    struct Band {
        int64_t intervalNs, lowNs, highNs;
    };
    const Band bands[] = {{kPeriod60Ns, 16000001, 16999999},
                          {kPeriod90Ns, 10800001, 11699999},
                          {kPeriod120Ns, 8000001, 8999999}};
    for (const Band& band : bands) {
        measure(band.intervalNs);
        monitorAgain({});
        takeCalls();
        const auto hints = [](int64_t periodNs) {
            Report r;
            r.period = periodNs;
            return monitorAgain(r).first.size();
        };
        EXPECT_EQ(hints(band.lowNs), 1u);
        EXPECT_EQ(hints(band.highNs), 1u);
        EXPECT_EQ(hints(band.lowNs - 1), 0u);
        EXPECT_EQ(hints(band.highNs + 1), 0u);
        EXPECT_EQ(hints(-band.lowNs), 0u);
        EXPECT_EQ(hints(INT64_MIN), 0u);
        for (const Band& other : bands) {
            EXPECT_EQ(hints(other.lowNs), other.lowNs == band.lowNs ? 1u : 0u);
        }
    }
}

TEST_F(BufferMonitorTest, DecidesOnlyWithAStampBehindIt) {
    measure(kPeriod60Ns);
    Report unstamped;
    unstamped.sfTime = 0;
    monitorAgain(unstamped);
    takeCalls();
    EXPECT_EQ(monitorAgain({}).first.size(), 0u);
    EXPECT_EQ(monitorAgain({}).first.size(), 1u);
    Report other;  // not decided on, but its stamp counts
    other.peer = "x";
    other.sfTime = 0;
    EXPECT_EQ(monitorAgain(other).first.size(), 0u);
    EXPECT_EQ(monitorAgain({}).first.size(), 0u);

    android::clearConfigs();
    initialise();
    android::brevoldAppTypeCheck("com.example.other#0");
    android::brevoldLayerStatusCheck(false, "com.example.other#0", 0, 0);
    measure(kPeriod60Ns);
    takeCalls();
    EXPECT_EQ(monitorAgain({}).first.size(), 0u);
    EXPECT_EQ(monitorAgain({}).first.size(), 1u);
}

TEST_F(BufferMonitorTest, WithoutPfarDownThereAreOnlyMarkers) {
    gDevice.properties["vendor.perf.pfar.down.enable"] = "0";
    restartWith("com.example.other#0");
    const auto [calls, labels] = monitor({});
    EXPECT_EQ(calls, Texts{});
    EXPECT_EQ(labels, Texts{label("DOWN", "0.282353", "28333332", "8000000", "3000000", "2")});
    Report up;
    up.queued = 1;
    up.diffQB = 40000000;
    EXPECT_EQ(monitorAgain(up).first.size(), 1u);
    host::takeLog();
    measure(kPeriod60Ns);  // its first tick ends the window that was open
    EXPECT_NE(takeLogTexts().back().find("Down:\t0 \tUp:\t0"), std::string::npos);
}

TEST_F(BufferMonitorTest, DecisionsAreCountedPerWindow) {
    measure(kPeriod60Ns);
    brevoldRefresh();
    monitorAgain({});
    for (int i = 0; i < 3; ++i)
        monitorAgain({});
    Report up;
    up.queued = 1;
    up.diffQB = 40000000;
    for (int i = 0; i < 2; ++i)
        monitorAgain(up);
    host::takeLog();
    for (int i = 0; i < 125; ++i) {
        advance(kPeriod60Ns);
        brevoldRefresh();
    }
    const Texts log = takeLogTexts();
    ASSERT_EQ(log.size(), 2u);
    EXPECT_NE(log[0].find(" \tDown:\t4 \tUp:\t2 \tIdle:\t0"), std::string::npos) << log[0];
    EXPECT_NE(log[1].find(" \tDown:\t0 \tUp:\t0 \tIdle:\t0"), std::string::npos) << log[1];
    monitorAgain({});
    restartWith("com.example.other#0");
    brevoldRefresh();  // no gap before it, which would forget the counts as well
    for (int i = 0; i < 62; ++i) {
        advance(kPeriod60Ns);
        brevoldRefresh();
    }
    EXPECT_NE(takeLogTexts().back().find(" \tDown:\t0 "), std::string::npos);
}

TEST_F(BufferMonitorTest, LongMarkersAreCut) {
    Report huge;
    huge.diffSFToQB = INT64_MIN + 1000000000;
    huge.diffQB = INT64_MIN;
    huge.queued = 2;
    const Texts labels = monitor(huge).second;
    ASSERT_EQ(labels.size(), 2u);
    EXPECT_EQ(labels[0].size(), 255u);
}

TEST_F(BufferMonitorTest, HeadroomThatOverflowsAborts) {
    measure(kPeriod60Ns);
    monitorAgain({});
    for (const int queued : {1, 2}) {
        Report r;
        r.queued = queued;
        r.diffSFToQB = INT64_MIN;
        EXPECT_EXIT(monitorAgain(r), testing::KilledBySignal(SIGABRT), "") << queued;
    }
    Report divisor;
    divisor.queued = 1;
    divisor.diffSFToQB = 15666666 - INT64_MAX;
    EXPECT_EXIT(monitorAgain(divisor), testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
}  // namespace brevold::test
