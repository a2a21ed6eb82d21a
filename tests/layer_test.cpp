#include <regex>

#include "tests/test_device.h"

using namespace brevold::test;

using LayerTest = TargetAppTest;

TEST(NameTest, PackageNameOfALayerName) {
    const std::pair<std::string, std::string> cases[] = {
            {"SurfaceView - com.example.player/com.example.player.Main#0", "com.example.player"},
            {"com.example.player/com.example.player.Main#0", "com.example.player"},
            {"SurfaceView[com.example.player/Main]#0", "SurfaceView[com.example.player"},
            {"SurfaceView\t\tcom.example.video/Player#5", "com.example.video"},
            {"surfaceview - a#0", "surfaceview - a"},
            {"caf\xc3\xa9/\xff#0", "caf\xc3\xa9"},
            {{"a\0b/c#0", 7}, {"a\0b", 3}},
    };
    for (const auto& [layer, package] : cases)
        EXPECT_EQ(android::getPackageName(layer), package) << layer;
}

// Compares all names made of a prefix and up to this many tokens, with and without an ending.
static void compareWithExpression(const std::string& name, int tokensLeft) {
    static const std::regex expression("(?:SurfaceView[-\\s\\t]+)?([^/]+).*#\\d+");
    for (const std::string& layer : {name, name + "#7"}) {
        std::smatch match;
        const bool isMatch = std::regex_match(layer, match, expression);
        ASSERT_EQ(android::getPackageName(layer), isMatch ? match[1].str() : "") << layer;
    }
    if (tokensLeft == 0) return;
    for (const char* token :
         {"SurfaceView", "S", "a", "/", "#", "0", "-", " ", "\t", "\n", "\r", "\xe9"}) {
        compareWithExpression(name + token, tokensLeft - 1);
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST(NameTest, PackageNameOfEveryShortNameIsThatOfTheExpression) {
    for (const char* begin : {"", "SurfaceView-"})
        compareWithExpression(begin, 4);
}

TEST(NameTest, LongNamesAreNotMatchedAsAWhole) {
    constexpr size_t kMaxBytes = 65536;
    const auto filled = [](const std::string& begin, char fill, const std::string& end) {
        return begin + std::string(kMaxBytes - begin.size() - end.size(), fill) + end;
    };
    const std::string letters(kMaxBytes - 2, 'a');
    const std::pair<std::string, std::string> cases[] = {
            // The expression does not match, after steps that grow with the cube or the square.
            {filled("SurfaceView", '-', ""), ""},
            {letters, ""},
            {filled("", '\n', "/\n#0"), ""},
            // It matches, but the steps grow with the square of the length.
            {filled("a#", '0', ""), "a"},
            {filled("a/", '#', "0"), "a"},
            // It matches at once, but stores a state per byte.
            {letters + "#0", letters},
            {filled("SurfaceView", ' ', "/#0"), " "},
            {filled("SurfaceView", '\t', "a/b#0"), "a"},
            {filled("SurfaceView\n", '\0', "x#0"), std::string(kMaxBytes - 15, '\0') + "x"},
            {filled("a/", '/', "\r#0"), ""},
    };
    for (const auto& [layer, package] : cases)
        EXPECT_TRUE(android::getPackageName(layer) == package) << layer.substr(0, 16);
}

static void setLayer(const char* name, int keyA = 0, int keyB = 0) {
    android::brevoldLayerStatusCheck(false, name, keyA, keyB);
}

TEST_F(LayerTest, AsksTheServiceOncePerNewName) {
    const std::tuple<const char*, int, const char*, bool> rows[] = {
            {"com.example.a/Main#0", 2, "query 5633 com.example.a", true},
            {"com.example.a/Main#0", 3, "", true},
            {"com.example.a/Main#1", 3, "query 5633 com.example.a", false},
            {"com.example.b", 2, "", false},  // no package name: the type stays
            {"com.example.b#0", 2, "query 5633 com.example.b", true},
            {"com.example.c#0", 1, "query 5633 com.example.c", false},
    };
    for (const auto& [name, appType, calls, isTarget] : rows) {
        gDevice.appType = appType;
        android::brevoldAppTypeCheck(name);
        EXPECT_EQ(takeCalls(), calls) << name;
        setLayer(name);
        EXPECT_EQ(brevoldCheck("sf"), isTarget) << name;
    }
}

TEST_F(LayerTest, SkippedAndDebugLayersChangeNothing) {
    gDevice.properties["vendor.perf.brevold.debug.layers"] = "debug#0";
    restartWith("com.example.a#0");
    gDevice.appType = 3;
    takeCalls();
    android::brevoldAppTypeCheck("debug#0");
    EXPECT_EQ(takeCalls(), "");
    android::brevoldAppTypeCheck("com.example.b#0");
    android::brevoldLayerStatusCheck(true, "com.example.b#0", 1, 2);
    setLayer("debug#0");
    EXPECT_TRUE(brevoldCheck("sf"));
    setLayer("com.example.b#0");
    EXPECT_FALSE(brevoldCheck("sf"));
}

TEST_F(LayerTest, ANewLayerResetsTheModeAndTheSameLayerKeepsIt) {
    measure(kPeriod60Ns);
    setLayer(kLayer);
    EXPECT_TRUE(hasMode());
    const std::tuple<const char*, int, int> changes[] = {
            {"x", 0, 0}, {"x", 1, 0}, {"x", 1, 1}, {"xy", 1, 1}, {"x", 1, 1}};
    for (const auto& [name, keyA, keyB] : changes) {
        measure(kPeriod60Ns);
        setLayer(name, keyA, keyB);
        EXPECT_FALSE(hasMode()) << name << keyA << keyB;
    }
    // A reset keeps the name and clears the keys.
    setLayer("com.example.b#0", 1, 1);
    restart();
    takeCalls();
    android::brevoldAppTypeCheck("com.example.b#0");
    EXPECT_EQ(takeCalls(), "");
    measure(kPeriod60Ns);
    setLayer("com.example.b#0");
    EXPECT_TRUE(hasMode());
}
