#include <dlfcn.h>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

struct InitTest : DeviceTest {
    void SetUp() override { provide(kClient); }
};
using MissingLibraryTest = DeviceTest;

constexpr char kReadsWithoutFeatures[] =
        "vendor.display.use_smooth_motion=0; vendor.perf.fps_switch.enable=0";

TEST_F(InitTest, ReadsEverySwitchInOrderWithItsDefault) {
    provide(kFeatures);
    gDevice.isOn = false;
    EXPECT_TRUE(brevoldInit());  // jank boost is on unless its setting says otherwise
    EXPECT_EQ(gDevice.reads,
              "vendor.display.use_smooth_motion=0; feature 4; feature 5; "
              "vendor.perf.fps_switch.enable=0; vendor.perf.jr10.enable=1; "
              "vendor.perf.pfar.enable=0; vendor.perf.brevold.debug=0; "
              "vendor.perf.pfar.down.enable=0; vendor.perf.brevold.debug.layers=NONE");
    EXPECT_TRUE(host::startedThreads().empty());
    gDevice.reads.clear();
    EXPECT_TRUE(brevoldInit());
    EXPECT_EQ(gDevice.reads, "");
}

TEST_F(InitTest, WithoutTheFeatureLibraryOnlyTheRefreshRateSwitchIsRead) {
    EXPECT_TRUE(brevoldInit());
    EXPECT_EQ(std::exchange(gDevice.reads, {}), kReadsWithoutFeatures);
    provide(kFeatures, "IsFeatureEnabled");
    EXPECT_TRUE(restart());
    EXPECT_EQ(gDevice.reads, kReadsWithoutFeatures);
    EXPECT_TRUE(host::startedThreads().empty());
    EXPECT_EQ(takeLogTexts(), "");
}

TEST_F(InitTest, SwitchesDecideFeaturesAndWorkers) {
    provide(kFeatures);
    gDevice.isOn = false;
    struct Row {
        std::set<int> features;
        const char *pfar, *jr10, *fpsSwitch;
        bool anyFeature;
        size_t workers;
    };
    const Row rows[] = {
            {{}, "0", "1", "0", false, 0},   {{5}, "1", "1", "0", true, 2},
            {{5}, "2", "1", "0", false, 0},  {{5}, " 1x", "1", "0", true, 2},  // as atoi reads it
            {{5}, "on", "1", "0", false, 0}, {{5}, "0", "1", "0", false, 0},
            {{4}, "1", "0", "0", false, 0},  {{4}, "0", "1", "0", true, 0},
            {{4}, "0", "0", "0", false, 0},  {{}, "1", "1", "1", true, 0},
    };
    size_t workers = 0;
    for (const Row& row : rows) {
        gDevice.features = row.features;
        gDevice.properties = {{"vendor.perf.pfar.enable", row.pfar},
                              {"vendor.perf.jr10.enable", row.jr10},
                              {"vendor.perf.fps_switch.enable", row.fpsSwitch}};
        EXPECT_EQ(restart(), row.anyFeature) << &row - rows;
        EXPECT_EQ(brevoldInit(), row.anyFeature) << &row - rows;
        workers += row.workers;
        ASSERT_EQ(host::startedThreads().size(), workers) << &row - rows;
    }
    const auto threads = host::startedThreads();
    for (size_t i = 0; i < workers; ++i) {
        EXPECT_EQ(threads[i].name, i % 2 == 0 ? "Monitor0" : "Monitor1");
        EXPECT_EQ(threads[i].priority, -9);
        EXPECT_EQ(threads[i].stackBytes, 0u);
    }
}

TEST_F(InitTest, ClearTurnsEverySwitchOffAndForgetsTheMode) {
    provide(kFeatures);
    brevoldInit();
    submit(frame());
    measure(kPeriod60Ns);
    takeLogTexts();
    android::clearConfigs();
    EXPECT_EQ(submit(frame(0, "com.example.other#0", kPeriod90Ns)), "");
    android::modeMonitor(kPeriod90Ns);
    advance(kSecondNs + 1);
    android::modeMonitor(kPeriod90Ns);
    EXPECT_EQ(takeLogTexts(), "");  // mode 3, unlogged
    brevoldInit();
    EXPECT_FALSE(hasMode());
}

TEST_F(MissingLibraryTest, WithoutTheClientNothingIsOn) {
    provide(kFeatures);
    EXPECT_FALSE(brevoldInit());
    const std::string log = takeLogTexts();
    EXPECT_EQ(log.rfind("Unable to open libvnx-perfd-client_system.so: ", 0), 0u) << log;
    EXPECT_NE(log.find("\n.; Failed to get hwopt handle.\n"), std::string::npos) << log;
    EXPECT_EQ(android::getOptHandle(), nullptr);
    EXPECT_EQ(takeLogTexts().find("hwopt"), std::string::npos);
}

TEST_F(InitTest, TheFeatureLibraryIsClosedAgainAndTheClientIsNot) {
    void* const features = provide(kFeatures);
    brevoldInit();
    EXPECT_NE(gDevice.reads, kReadsWithoutFeatures);
    dlclose(features);
    EXPECT_EQ(dlopen("libfeatgate_system.so", RTLD_LAZY | RTLD_NOLOAD), nullptr);
    void* const client = provide(kClient);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(android::initPerfLock(), client);
    EXPECT_EQ(android::getOptHandle(), client);
}

class MissingFunctionTest : public DeviceTest, public testing::WithParamInterface<const char*> {};

TEST_P(MissingFunctionTest, IsLoggedAndOnlyItsUserIsOff) {
    const std::string missing = GetParam();
    provide(kClient, missing);
    provide(kFeatures);
    EXPECT_EQ(brevoldInit(), missing != "perf_get_prop");
    const std::string first = submit(frame());
    const std::string calls = first + ", " + submit(frame(0, kLayer, kPeriod90Ns));
    const std::map<std::string, std::pair<std::string, std::string>> expected = {
            {"perf_get_prop", {"gPerfGetProp", ", "}},
            {"perf_lock_rel",
             {"gPerfLockRel", "hint 4244 0 0x3c; query 5633 com.example.game, hint 4244 0 0x5a"}},
            {"perf_get_feedback",
             {"gPerfGetFeedback", "hint 4244 0 0x3c, release 1; hint 4244 0 0x5a"}},
            {"perf_hint",
             {"gPerfHintUpdate function handle.\n; Unable to get mPerfHint function handle.\n; "
              "Unable to get mPerfHint",
              "query 5633 com.example.game, "}},
    };
    const auto& [name, due] = expected.at(missing);
    EXPECT_EQ(takeLogTexts(), "Unable to get " + name + " function handle.\n");
    EXPECT_EQ(calls, due);
}

INSTANTIATE_TEST_SUITE_P(Functions, MissingFunctionTest,
                         testing::Values("perf_hint", "perf_get_prop", "perf_lock_rel",
                                         "perf_get_feedback"));

TEST_F(InitTest, DebugLayersAreSplitAtSingleBlanks) {
    using Names = std::vector<std::string>;
    const std::pair<std::string, Names> cases[] = {
            {"", {}},    {"a", {"a"}},      {"a b", {"a", "b"}},          {"a b ", {"a", "b"}},
            {" ", {""}}, {" a", {"", "a"}}, {"a\tb,c\nd", {"a\tb,c\nd"}}, {"a  b", {"a", "", "b"}},
    };
    for (auto [setting, expected] : cases) {
        Names out = {"kept"};
        android::addDebugLayers(setting.data(), out);
        expected.insert(expected.begin(), "kept");
        EXPECT_EQ(out, expected) << '"' << setting << '"';
    }
}

TEST_F(InitTest, DebugLayersComeFromTheSettingAndAreNeverForgotten) {
    provide(kFeatures);
    const auto areListed = [](const char* setting, std::vector<std::string> layers) {
        gDevice.properties["vendor.perf.brevold.debug.layers"] = setting;
        restart();
        std::string answers;
        for (const std::string& layer : layers)
            answers += android::isDebugLayer(layer) ? 'y' : 'n';
        return answers;
    };
    EXPECT_EQ(areListed("NONEsuch a", {"a", "NONEsuch"}), "nn");
    // A setting's 91 bytes end within its second name.
    EXPECT_EQ(areListed(("a " + std::string(200, 'b')).c_str(),
                        {"a", std::string(89, 'b'), "", "A", "ab", "aa", " "}),
              "yynnnnn");
    EXPECT_EQ(areListed("c  d", {"a", "c", "", "d"}), "yyyy");
}

TEST_F(InitTest, CheckWantsATargetAppAndTheFirstTwoLetters) {
    // Nothing is on before the initialisation.
    EXPECT_EQ(submit(frame(9)), "");
    brevoldRefresh();
    EXPECT_EQ(brevoldScaling(9, 0), 0);
    EXPECT_EQ(brevoldMonitor(0, kPeriod60Ns), 0);
    EXPECT_FALSE(brevoldCheck("sf"));
    provide(kFeatures);
    brevoldInit();
    EXPECT_FALSE(brevoldCheck("sf"));
    submit(frame());
    for (const char* name : {"sf", "sfEventThread"})
        EXPECT_TRUE(brevoldCheck(name)) << name;
    for (const char* name : {"s", "", "SF", "fs", "Sf"})
        EXPECT_FALSE(brevoldCheck(name)) << name;
    EXPECT_FALSE(brevoldCheck(nullptr));
    android::clearConfigs();
    EXPECT_FALSE(brevoldCheck("sf"));
    brevoldInit();
    EXPECT_FALSE(brevoldCheck("sf"));
    submit(frame());  // its type was forgotten, and its name was not
    EXPECT_FALSE(brevoldCheck("sf"));
}

}  // namespace
}  // namespace brevold::test
