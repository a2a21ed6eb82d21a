#include <dlfcn.h>

#include <cstring>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

using InitTest = DeviceTest;

constexpr char kOpenFailed[] = "Failed to get hwopt handle.\n";

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
    switchEverythingOn();
    for (const bool hasLibrary : {false, true}) {
        if (hasLibrary) provideFeatures("without_function");
        android::clearConfigs();
        EXPECT_TRUE(initialise());
        EXPECT_EQ(std::exchange(gDevice.reads, {}),
                  (Texts{"vendor.display.use_smooth_motion=0", "vendor.perf.fps_switch.enable=0"}));
        EXPECT_TRUE(host::startedThreads().empty());
        EXPECT_TRUE(takeLogTexts().empty());
    }
}

struct SwitchCase {
    const char* name;
    std::set<int> features;
    std::map<std::string, std::string> properties;
    bool anyFeature;
    size_t workers;
};

void PrintTo(const SwitchCase& c, std::ostream* out) {
    *out << c.name;
}

class SwitchTest : public DeviceTest, public testing::WithParamInterface<SwitchCase> {};

TEST_P(SwitchTest, DecidesFeaturesAndWorkers) {
    provideClient();
    provideFeatures();
    gDevice.features = GetParam().features;
    gDevice.properties = GetParam().properties;
    EXPECT_EQ(initialise(), GetParam().anyFeature);
    EXPECT_EQ(initialise(), GetParam().anyFeature);
    EXPECT_EQ(host::startedThreads().size(), GetParam().workers);
}

INSTANTIATE_TEST_SUITE_P(
        Switches, SwitchTest,
        testing::Values(
                SwitchCase{"nothing", {}, {}, false, 0},
                SwitchCase{"scaling", {5}, {{"vendor.perf.pfar.enable", "1"}}, true, 2},
                SwitchCase{
                        "scalingAsAtoiReadsIt", {5}, {{"vendor.perf.pfar.enable", " 1x"}}, true, 2},
                SwitchCase{"scalingNotOne", {5}, {{"vendor.perf.pfar.enable", "2"}}, false, 0},
                SwitchCase{"scalingNoNumber", {5}, {{"vendor.perf.pfar.enable", "on"}}, false, 0},
                SwitchCase{"scalingNotSet", {5}, {}, false, 0},
                SwitchCase{"scalingNotAllowed",
                           {4},
                           {{"vendor.perf.pfar.enable", "1"}, {"vendor.perf.jr10.enable", "0"}},
                           false,
                           0},
                SwitchCase{"jankBoost", {4}, {}, true, 0},
                SwitchCase{"jankBoostOff", {4}, {{"vendor.perf.jr10.enable", "0"}}, false, 0},
                SwitchCase{"refreshRate", {}, {{"vendor.perf.fps_switch.enable", "1"}}, true, 0}),
        [](const auto& test) { return test.param.name; });

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
    EXPECT_EQ(log[1], kOpenFailed);
    EXPECT_EQ(android::getOptHandle(), nullptr);
    EXPECT_EQ(takeLogTexts().size(), 1u);
}

TEST_F(InitTest, ClientHandleIsTheSameEveryTimeAndTheFeatureSwitchIsClosed) {
    provideClient();
    void* const handle = android::initPerfLock();
    EXPECT_NE(handle, nullptr);
    EXPECT_EQ(android::initPerfLock(), handle);
    EXPECT_EQ(android::getOptHandle(), handle);
    EXPECT_TRUE(takeLogTexts().empty());
}

struct MissingCase {
    const char* function;
    Texts log;
    bool anyFeature;
};

void PrintTo(const MissingCase& c, std::ostream* out) {
    *out << c.function;
}

class MissingFunctionTest : public DeviceTest, public testing::WithParamInterface<MissingCase> {};

TEST_P(MissingFunctionTest, IsLoggedAndOnlyItsUserIsOff) {
    provideClient(std::string("without_") + GetParam().function);
    provideFeatures();
    switchEverythingOn();
    EXPECT_EQ(initialise(), GetParam().anyFeature);
    EXPECT_EQ(takeLogTexts(), GetParam().log);
    report(1, 0, 0, kPeriod60Ns);
    report(1, 0, 0, kPeriod90Ns);
    Texts expected = {"hint 4244 0 0x3c", "query 5633 com.example.game", "release 1",
                      "hint 4244 0 0x5a"};
    const std::string missing = GetParam().function;
    if (missing == "perf_get_prop") expected = {};
    if (missing == "perf_hint") expected = {"query 5633 com.example.game"};
    if (missing == "perf_lock_rel") expected.erase(expected.begin() + 2);
    if (missing == "perf_get_feedback") expected.erase(expected.begin() + 1);
    EXPECT_EQ(takeCalls(), expected);
}

INSTANTIATE_TEST_SUITE_P(
        Functions, MissingFunctionTest,
        testing::Values(MissingCase{"perf_hint",
                                    {"Unable to get gPerfHintUpdate function handle.\n",
                                     "Unable to get mPerfHint function handle.\n",
                                     "Unable to get mPerfHint function handle.\n"},
                                    true},
                        MissingCase{"perf_get_prop",
                                    {"Unable to get gPerfGetProp function handle.\n"},
                                    false},
                        MissingCase{"perf_lock_rel",
                                    {"Unable to get gPerfLockRel function handle.\n"},
                                    true},
                        MissingCase{"perf_get_feedback",
                                    {"Unable to get gPerfGetFeedback function handle.\n"},
                                    true}),
        [](const auto& test) { return test.param.function; });

struct DebugLayersCase {
    const char* setting;
    Texts layers;
};

TEST_F(InitTest, DebugLayersAreSplitAtSingleBlanks) {
    const DebugLayersCase cases[] = {
            {"", {}},
            {"a", {"a"}},
            {"a b", {"a", "b"}},
            {"a b ", {"a", "b"}},
            {"a  b", {"a", "", "b"}},
            {" a", {"", "a"}},
            {" ", {""}},
            {"a\tb,c\nd", {"a\tb,c\nd"}},
    };
    for (const DebugLayersCase& c : cases) {
        char list[92];
        strcpy(list, c.setting);
        std::vector<std::string> out = {"kept"};
        android::addDebugLayers(list, out);
        Texts expected = {"kept"};
        expected.insert(expected.end(), c.layers.begin(), c.layers.end());
        EXPECT_EQ(out, expected) << '"' << c.setting << '"';
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
}

}  // namespace
}  // namespace brevold::test
