#include <dlfcn.h>

#include <cstring>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

using InitTest = DeviceTest;

TEST_F(InitTest, ReadsEverySwitchInOrderWithItsDefault) {
    provideClient();
    provideFeatures();
    gDevice.features = {4, 5};
    EXPECT_TRUE(initialise());  // jank boost is on unless its setting says otherwise
    EXPECT_EQ(gDevice.reads,
              (Texts{"vendor.display.use_smooth_motion=0", "feature 4", "feature 5",
                     "vendor.perf.fps_switch.enable=0", "vendor.perf.jr10.enable=1",
                     "vendor.perf.pfar.enable=0", "vendor.perf.brevold.debug=0",
                     "vendor.perf.pfar.down.enable=0", "vendor.perf.brevold.debug.layers=NONE"}));
    EXPECT_TRUE(host::startedThreads().empty());
    gDevice.reads.clear();
    EXPECT_TRUE(initialise());
    EXPECT_TRUE(gDevice.reads.empty());
}

TEST_F(InitTest, WithoutAllowedFeaturesOnlyTheRefreshRateSwitchIsRead) {
    provideClient();
    provideFeatures("without_function");
    switchEverythingOn();
    EXPECT_TRUE(initialise());
    EXPECT_EQ(gDevice.reads,
              (Texts{"vendor.display.use_smooth_motion=0", "vendor.perf.fps_switch.enable=0"}));
    EXPECT_TRUE(host::startedThreads().empty());
    EXPECT_TRUE(takeLogTexts().empty());
}

struct SwitchCase {
    std::set<int> features;
    // Settings; null is not set.
    const char *pfar, *jr10, *fpsSwitch;
    bool anyFeature;
    size_t workers;
};

TEST_F(InitTest, SwitchesDecideFeaturesAndWorkers) {
    provideClient();
    provideFeatures();
    const SwitchCase cases[] = {
            {{}, nullptr, nullptr, nullptr, false, 0},
            {{5}, "1", nullptr, nullptr, true, 2},
            {{5}, " 1x", nullptr, nullptr, true, 2},  // as atoi reads it
            {{5}, "2", nullptr, nullptr, false, 0},
            {{5}, "on", nullptr, nullptr, false, 0},
            {{5}, nullptr, nullptr, nullptr, false, 0},
            {{4}, "1", "0", nullptr, false, 0},
            {{4}, nullptr, nullptr, nullptr, true, 0},
            {{4}, nullptr, "0", nullptr, false, 0},
            {{}, "1", "1", "1", true, 0},
    };
    size_t workers = 0;
    for (const SwitchCase& c : cases) {
        gDevice.features = c.features;
        gDevice.properties.clear();
        if (c.pfar != nullptr) gDevice.properties["vendor.perf.pfar.enable"] = c.pfar;
        if (c.jr10 != nullptr) gDevice.properties["vendor.perf.jr10.enable"] = c.jr10;
        if (c.fpsSwitch != nullptr) {
            gDevice.properties["vendor.perf.fps_switch.enable"] = c.fpsSwitch;
        }
        android::clearConfigs();
        EXPECT_EQ(initialise(), c.anyFeature) << &c - cases;
        EXPECT_EQ(initialise(), c.anyFeature) << &c - cases;
        workers += c.workers;
        EXPECT_EQ(host::startedThreads().size(), workers) << &c - cases;
    }
}

TEST_F(InitTest, StartsBothWorkersAndNewOnesAfterAClear) {
    provideClient();
    provideFeatures();
    switchEverythingOn();
    EXPECT_TRUE(initialise());
    android::clearConfigs();
    EXPECT_FALSE(brevoldCheck("sf"));
    EXPECT_TRUE(initialise());
    const auto threads = host::startedThreads();
    ASSERT_EQ(threads.size(), 4u);
    for (size_t i = 0; i < threads.size(); ++i) {
        EXPECT_EQ(threads[i].name, i % 2 == 0 ? "Monitor0" : "Monitor1");
        EXPECT_EQ(threads[i].priority, -9);
        EXPECT_EQ(threads[i].stackBytes, 0u);
    }
}

TEST_F(InitTest, WithoutClientLibraryNothingIsOn) {
    provideFeatures();
    switchEverythingOn();
    EXPECT_FALSE(initialise());
    const Texts log = takeLogTexts();
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0].rfind("Unable to open libvnx-perfd-client_system.so: ", 0), 0u);
    EXPECT_EQ(log[0].substr(log[0].size() - 2), "\n.");
    EXPECT_EQ(log[1], "Failed to get hwopt handle.\n");
    EXPECT_EQ(android::getOptHandle(), nullptr);
    EXPECT_EQ(takeLogTexts().size(), 1u);
}

TEST_F(InitTest, FeatureSwitchIsClosedAgain) {
    provideClient();
    void* const handle = provideFeatures();
    initialise();
    EXPECT_FALSE(gDevice.reads.empty());
    dlclose(handle);
    EXPECT_EQ(dlopen("libfeatgate_system.so", RTLD_LAZY | RTLD_NOLOAD), nullptr);
}

TEST_F(InitTest, ClientHandleIsTheSameEveryTime) {
    void* const handle = provideClient();
    EXPECT_EQ(android::initPerfLock(), handle);
    EXPECT_EQ(android::initPerfLock(), handle);
    EXPECT_EQ(android::getOptHandle(), handle);
}

class MissingFunctionTest : public DeviceTest, public testing::WithParamInterface<const char*> {};

TEST_P(MissingFunctionTest, IsLoggedAndOnlyItsUserIsOff) {
    const std::string missing = GetParam();
    provideClient("without_" + missing);
    provideFeatures();
    switchEverythingOn();
    EXPECT_EQ(initialise(), missing != "perf_get_prop");
    report(1, 0, 0, kPeriod60Ns);
    report(1, 0, 0, kPeriod90Ns);

    const std::string user = missing == "perf_hint"       ? "gPerfHintUpdate"
                             : missing == "perf_get_prop" ? "gPerfGetProp"
                             : missing == "perf_lock_rel" ? "gPerfLockRel"
                                                          : "gPerfGetFeedback";
    Texts log = {"Unable to get " + user + " function handle.\n"};
    Texts calls = {"hint 4244 0 0x3c", "query 5633 com.example.game", "release 1",
                   "hint 4244 0 0x5a"};
    if (missing == "perf_get_prop") calls = {};
    if (missing == "perf_lock_rel") calls.erase(calls.begin() + 2);
    if (missing == "perf_get_feedback") calls.erase(calls.begin() + 1);
    if (missing == "perf_hint") {
        calls = {calls[1]};
        log.insert(log.end(), 2, "Unable to get mPerfHint function handle.\n");
    }
    EXPECT_EQ(takeLogTexts(), log);
    EXPECT_EQ(takeCalls(), calls);
}

INSTANTIATE_TEST_SUITE_P(Functions, MissingFunctionTest,
                         testing::Values("perf_hint", "perf_get_prop", "perf_lock_rel",
                                         "perf_get_feedback"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(InitTest, DebugLayersAreSplitAtSingleBlanks) {
    const std::pair<const char*, Texts> cases[] = {
            {"", {}},
            {"a", {"a"}},
            {"a b", {"a", "b"}},
            {"a b ", {"a", "b"}},
            {"a  b", {"a", "", "b"}},
            {" a", {"", "a"}},
            {" ", {""}},
            {"a\tb,c\nd", {"a\tb,c\nd"}},
    };
    for (const auto& [setting, layers] : cases) {
        char list[92];
        strcpy(list, setting);
        std::vector<std::string> out = {"kept"};
        android::addDebugLayers(list, out);
        Texts expected = {"kept"};
        expected.insert(expected.end(), layers.begin(), layers.end());
        EXPECT_EQ(out, expected) << '"' << setting << '"';
    }
}

TEST_F(InitTest, DebugLayersComeFromTheSettingAndAreNeverForgotten) {
    provideClient();
    provideFeatures();
    switchEverythingOn();
    std::string& setting = gDevice.properties["vendor.perf.brevold.debug.layers"];
    const auto reread = [&](const std::string& value) {
        setting = value;
        android::clearConfigs();
        initialise();
    };
    reread("NONEsuch a");
    EXPECT_FALSE(android::isDebugLayer("a"));
    EXPECT_FALSE(android::isDebugLayer("NONEsuch"));
    reread("a " + std::string(200, 'b'));
    EXPECT_TRUE(android::isDebugLayer("a"));
    EXPECT_TRUE(android::isDebugLayer(std::string(89, 'b')));  // the setting's 91 bytes end here
    for (const char* other : {"", "A", "ab", "aa", " "}) {
        EXPECT_FALSE(android::isDebugLayer(other)) << other;
    }
    reread("c  d");
    for (const char* layer : {"a", "c", "", "d"})
        EXPECT_TRUE(android::isDebugLayer(layer)) << layer;
}

TEST_F(InitTest, CheckWantsATargetAppAndTheFirstTwoLetters) {
    EXPECT_FALSE(brevoldCheck("sf"));
    startTargetApp();
    for (const char* name : {"sf", "sfEventThread"})
        EXPECT_TRUE(brevoldCheck(name)) << name;
    for (const char* name : {"s", "", "SF", "fs", "Sf"})
        EXPECT_FALSE(brevoldCheck(name)) << name;
    EXPECT_FALSE(brevoldCheck(nullptr));
    android::clearConfigs();
    EXPECT_FALSE(brevoldCheck("sf"));
    initialise();
    EXPECT_FALSE(brevoldCheck("sf"));
    report(1, 0, 0, kPeriod60Ns);  // its type was forgotten, and its name was not
    EXPECT_FALSE(brevoldCheck("sf"));
}

}  // namespace
}  // namespace brevold::test
