#include <regex>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

using LayerTest = DeviceTest;

struct NameCase {
    std::string layer;
    const char* package;
};

TEST_F(LayerTest, PackageNameOfALayerName) {
    const NameCase cases[] = {
            {"SurfaceView - com.example.player/com.example.player.MainActivity#0",
             "com.example.player"},
            {"com.example.player/com.example.player.MainActivity#0", "com.example.player"},
            {"SurfaceView\t\tcom.example.video/Player#5", "com.example.video"},
            {"com.example.game#12", "com.example.game"},
            {"StatusBar#0", "StatusBar"},
            {"a#1#2", "a#1"},
            {"a#1/b#2", "a#1"},
            {"SurfaceView#0", "SurfaceView"},
            {"surfaceview - a#0", "surfaceview - a"},
            {"SurfaceView[com.example.player/com.example.player.MainActivity]#0",
             "SurfaceView[com.example.player"},
            {"SurfaceView - /x#0", " "},
            {"SurfaceView -#0", "-"},
            {"SurfaceView-\n x#0", "x"},
            {"com.example.player/com.example.player.MainActivity", ""},
            {"#3", ""},
            {"##3", "#"},
            {"/x#0", ""},
            {"a/b#1/c", ""},
            {"a/b#12 ", ""},
            {"a/b#", ""},
            {"", ""},
            {"a\nb#0", "a\nb"},
            {"a/b\nc#0", ""},
            {"a/b\rc#0", ""},
            {"a\n/b#0", "a\n"},
            {std::string("a\0b/c#0", 7), "a"},
            {"caf\xc3\xa9/\xff#0", "caf\xc3\xa9"},
    };
    for (const NameCase& c : cases) {
        // The zero byte ends the expected text, so compare that much.
        EXPECT_STREQ(android::getPackageName(c.layer).c_str(), c.package) << c.layer;
    }
}

/** Every name of up to so many tokens, each also with an end that a package needs. */
void compareWithExpression(const std::string& name, int tokensLeft, size_t& compared) {
    static const std::regex expression("(?:SurfaceView[-\\s\\t]+)?([^/]+).*#\\d+");
    for (const std::string& layer : {name, name + "#7"}) {
        std::smatch match;
        const bool isMatch = std::regex_match(layer, match, expression);
        const std::string package = android::getPackageName(layer);
        ASSERT_EQ(package, isMatch ? match[1].str() : "") << testing::PrintToString(layer);
        ++compared;
    }
    if (tokensLeft == 0) return;
    for (const char* token :
         {"SurfaceView", "S", "a", "/", "#", "0", "-", " ", "\t", "\n", "\r", "\xe9"}) {
        compareWithExpression(name + token, tokensLeft - 1, compared);
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST_F(LayerTest, PackageNameIsTheExpressionsForEveryShortName) {
    constexpr int kTokens = 5;
    size_t compared = 0;
    compareWithExpression("", kTokens, compared);
    EXPECT_EQ(compared, 2u * 271453);  // 12^0 + ... + 12^5
}

TEST_F(LayerTest, PackageNameOfALongNameIsFoundWithoutMatchingAllOfIt) {
    constexpr size_t kLongest = 65536;
    const auto filled = [](const std::string& begin, char fill, const std::string& end) {
        return begin + std::string(kLongest - begin.size() - end.size(), fill) + end;
    };
    const std::string letters(kLongest - 2, 'a');
    const std::pair<std::string, std::string> cases[] = {
            // The expression backtracks with the cube of the length, then the square.
            {filled("SurfaceView", '-', ""), ""},
            {letters, ""},
            {filled("", '\n', "/\n#0"), ""},
            // It matches, and backtracks with the square all the same.
            {filled("a#", '0', ""), "a"},
            {filled("a/", '#', "0"), "a"},
            // It matches at once, but keeps a state for each byte.
            {letters + "#0", letters},
            {filled("SurfaceView", ' ', "/#0"), " "},
            {filled("SurfaceView", '\t', "a/b#0"), "a"},
            {filled("SurfaceView\n", '\0', "x#0"), std::string(kLongest - 15, '\0') + "x"},
            {filled("a/", '/', "\r#0"), ""},
    };
    for (const auto& [layer, package] : cases)
        EXPECT_TRUE(android::getPackageName(layer) == package) << layer.substr(0, 16);
}

TEST_F(LayerTest, AsksTheServiceOncePerNewName) {
    provideClient();
    provideFeatures();
    switchEverythingOn();
    initialise();
    takeCalls();
    const auto check = [](const char* name, int keyA, int keyB) {
        android::brevoldAppTypeCheck(name);
        android::brevoldLayerStatusCheck(false, name, keyA, keyB);
        return takeCalls();
    };
    EXPECT_EQ(check("com.example.a/Main#0", 7, 9), Texts{"query 5633 com.example.a"});
    EXPECT_TRUE(brevoldCheck("sf"));
    EXPECT_EQ(check("com.example.a/Main#0", 7, 9), Texts{});
    EXPECT_EQ(check("com.example.a/Main#0", 7, 8), Texts{});
    gDevice.appType = 3;
    EXPECT_EQ(check("com.example.a/Main#1", 7, 8), Texts{"query 5633 com.example.a"});
    EXPECT_FALSE(brevoldCheck("sf"));
    gDevice.appType = 2;
    EXPECT_EQ(check("com.example.b", 7, 8), Texts{});  // no package name: the old type stands
    EXPECT_FALSE(brevoldCheck("sf"));
    EXPECT_EQ(check("com.example.b#0", 7, 8), Texts{"query 5633 com.example.b"});
    EXPECT_TRUE(brevoldCheck("sf"));
}

TEST_F(LayerTest, SkippedAndDebugLayersChangeNothing) {
    gDevice.properties["vendor.perf.brevold.debug.layers"] = "debug#0";
    startTargetApp();
    ASSERT_TRUE(brevoldCheck("sf"));
    gDevice.appType = 3;
    android::brevoldAppTypeCheck("debug#0");
    EXPECT_EQ(takeCalls(), Texts{});
    android::brevoldAppTypeCheck("com.example.b#0");
    EXPECT_EQ(takeCalls(), Texts{"query 5633 com.example.b"});
    android::brevoldLayerStatusCheck(true, "com.example.b#0", 1, 2);
    android::brevoldLayerStatusCheck(false, "debug#0", 1, 2);
    EXPECT_TRUE(brevoldCheck("sf"));
    android::brevoldLayerStatusCheck(false, "com.example.b#0", 1, 2);
    EXPECT_FALSE(brevoldCheck("sf"));
}

TEST_F(LayerTest, ANewLayerForgetsTheModeAndAnUnchangedOneKeepsIt) {
    startTargetApp();
    const auto qbHint = [] {
        android::energyScaling(1.0f, 1, 0, 1);
        return takeCalls().size();
    };
    const auto status = [](const char* name, int keyA, int keyB) {
        android::brevoldLayerStatusCheck(false, name, keyA, keyB);
    };
    measure(kPeriod60Ns);
    takeCalls();
    status(kLayer, 0, 0);
    EXPECT_EQ(qbHint(), 1u);
    const std::tuple<const char*, int, int> changes[] = {
            {"x", 0, 0}, {"x", 1, 0}, {"x", 1, 1}, {"xy", 1, 1}, {"x", 1, 1}};
    for (const auto& [name, keyA, keyB] : changes) {
        measure(kPeriod60Ns);
        takeCalls();
        status(name, keyA, keyB);
        EXPECT_EQ(qbHint(), 0u) << name << keyA << keyB;
    }
}

TEST_F(LayerTest, TheNameOutlivesAClearAndTheKeysDoNot) {
    startTargetApp();
    android::brevoldLayerStatusCheck(false, "com.example.b#0", 1, 0);
    android::clearConfigs();
    initialise();
    takeCalls();
    android::brevoldAppTypeCheck("com.example.b#0");
    EXPECT_EQ(takeCalls(), Texts{});
    measure(kPeriod60Ns);
    takeCalls();
    android::brevoldLayerStatusCheck(false, "com.example.b#0", 0, 0);  // unchanged: keys are 0
    android::energyScaling(1.0f, 1, 0, 1);
    EXPECT_EQ(takeCalls().size(), 1u);
}

}  // namespace
}  // namespace brevold::test
