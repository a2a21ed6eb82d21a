#include <dlfcn.h>

#include <array>

#include "tests/test_device.h"

using namespace brevold::test;

struct InitTest : DeviceTest {
    void SetUp() override { provide(kClient); }
};

constexpr char kReadsWithoutFeatures[] =
        "vendor.display.use_smooth_motion=0; vendor.perf.fps_switch.enable=0";

TEST_F(InitTest, ReadsEverySwitchInOrderWithItsDefault) {
    void* const features = provide(kFeatures);
    gDevice.isOn = false;
    EXPECT_TRUE(brevoldInit());  // jank boost is on by default
    EXPECT_EQ(gDevice.reads,
              "vendor.display.use_smooth_motion=0; feature 4; feature 5; "
              "vendor.perf.fps_switch.enable=0; vendor.perf.jr10.enable=1; "
              "vendor.perf.pfar.enable=0; vendor.perf.brevold.debug=0; "
              "vendor.perf.pfar.down.enable=0; vendor.perf.brevold.debug.layers=NONE");
    EXPECT_TRUE(host::startedThreads().empty());
    gDevice.reads.clear();
    EXPECT_TRUE(brevoldInit());
    EXPECT_EQ(gDevice.reads, "");
    // The feature library is closed again, the client is not.
    dlclose(features);
    EXPECT_EQ(dlopen(kFeatures, RTLD_LAZY | RTLD_NOLOAD), nullptr);
    void* const client = provide(kClient);
    EXPECT_EQ(android::initPerfLock(), client);
    EXPECT_EQ(android::initPerfLock(), client);
    EXPECT_EQ(android::getOptHandle(), client);
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

TEST_F(InitTest, ASwitchIsOnIfItsNumberIsOneAndScalingStartsTheWorkers) {
    provide(kFeatures);
    size_t number = 0;
    for (const auto& [value, isOn] : std::map<std::string, bool>{
                 {"0", false}, {"1", true}, {"2", false}, {" 1x", true}, {"on", false}}) {
        gDevice.properties = {{"vendor.perf.pfar.enable", value},
                              {"vendor.perf.jr10.enable", "0"},
                              {"vendor.perf.fps_switch.enable", "0"}};
        EXPECT_EQ(restart(), isOn) << value;
        number += isOn ? 2 : 0;
        ASSERT_EQ(host::startedThreads().size(), number);
    }
    for (const host::StartedThread& thread : host::startedThreads()) {
        EXPECT_EQ(thread.name, number++ % 2 == 0 ? "Monitor0" : "Monitor1");
        EXPECT_EQ(thread.priority, -9);
        EXPECT_EQ(thread.stackBytes, 0u);
    }
}

TEST_F(DeviceTest, WithoutTheClientNothingIsOn) {
    provide(kFeatures);
    EXPECT_FALSE(brevoldInit());
    const std::string log = takeLogTexts();
    EXPECT_EQ(log.rfind("Unable to open libvnx-perfd-client_system.so: ", 0), 0u) << log;
    EXPECT_NE(log.find("\n.; Failed to get hwopt handle.\n"), std::string::npos) << log;
    EXPECT_EQ(android::getOptHandle(), nullptr);
    EXPECT_EQ(takeLogTexts().find("hwopt"), std::string::npos);
}

// A function of the client, its pointer's name in the log, and the calls of two reports without it.
using Missing = std::array<std::string, 3>;
class MissingFunctionTest : public DeviceTest, public testing::WithParamInterface<Missing> {};

TEST_P(MissingFunctionTest, IsLoggedAndDisablesOnlyItsCallers) {
    const auto& [function, pointer, calls] = GetParam();
    provide(kClient, function);
    provide(kFeatures);
    EXPECT_EQ(brevoldInit(), function != "perf_get_prop");
    const std::string callsAt60Hz = submit(frame());
    EXPECT_EQ(callsAt60Hz + "; " + submit(frame(0, kLayer, kPeriod90Ns)), calls);
    std::string log = "Unable to get " + pointer + " function handle.\n";
    if (function == "perf_hint") {
        for (int worker = 0; worker < 2; ++worker)
            log += "; Unable to get mPerfHint function handle.\n";
        request(10.0f, 2, 2, kSf);
        log += "; mPerfHint is null.";
    }
    EXPECT_EQ(takeLogTexts(), log);
}

INSTANTIATE_TEST_SUITE_P(
        Client, MissingFunctionTest,
        testing::Values(Missing{"perf_get_prop", "gPerfGetProp", "; "},
                        Missing{"perf_hint", "gPerfHintUpdate", "query 5633 com.example.game; "},
                        Missing{"perf_lock_rel", "gPerfLockRel",
                                "hint 4244 0 0x3c; query 5633 com.example.game; hint 4244 0 0x5a"},
                        Missing{"perf_get_feedback", "gPerfGetFeedback",
                                "hint 4244 0 0x3c; release 1; hint 4244 0 0x5a"}),
        [](const auto& test) { return test.param[0]; });

TEST_F(InitTest, DebugLayersAreSplitAtSingleBlanksAndNeverRemoved) {
    provide(kFeatures);
    std::vector<std::string> all;
    const std::pair<std::string, std::vector<std::string>> cases[] = {
            {"", {}},    {"a", {"a"}},      {"a b", {"a", "b"}},          {"a b ", {"a", "b"}},
            {" ", {""}}, {" a", {"", "a"}}, {"a\tb,c\nd", {"a\tb,c\nd"}}, {"a  b", {"a", "", "b"}},
    };
    std::vector<std::string> out;
    for (auto [setting, expected] : cases) {
        android::addDebugLayers(setting.data(), out);
        all.insert(all.end(), expected.begin(), expected.end());
        EXPECT_EQ(out, all) << '"' << setting << '"';
    }
    const auto answersAfter = [](const std::string& setting) {
        gDevice.properties["vendor.perf.brevold.debug.layers"] = setting;
        restart();
        std::string answers;
        for (const std::string& layer : {std::string("a"), std::string(89, 'b'), std::string(),
                                         std::string("A"), std::string("aa"), std::string("c")})
            answers += android::isDebugLayer(layer) ? 'y' : 'n';
        return answers;
    };
    EXPECT_EQ(answersAfter("NONEsuch a"), "nnnnnn");
    EXPECT_EQ(answersAfter("a " + std::string(200, 'b')), "yynnnn");  // cut after 91 bytes
    EXPECT_EQ(answersAfter("c  d"), "yyynny");
}

TEST_F(InitTest, NothingIsOnBeforeInitAndCheckTakesNamesThatBeginWithSf) {
    EXPECT_EQ(submit(frame(9)), "");
    brevoldRefresh();
    EXPECT_EQ(brevoldScaling(9, 0) + brevoldMonitor(0, kPeriod60Ns), 0);
    provide(kFeatures);
    brevoldInit();
    submit(frame());
    std::string answers;
    for (const char* name : {"sf", "sfEventThread", "s", "", "SF", "fs", "Sf"})
        answers += brevoldCheck(name) ? 'y' : 'n';
    EXPECT_EQ(answers, "yynnnnn");
    EXPECT_FALSE(brevoldCheck(nullptr));
}
