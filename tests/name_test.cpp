#include <regex>

#include "tests/test_device.h"

using namespace brevold::test;

TEST(NameTest, ThePackageIsThatOfTheExpression) {
    const std::regex expression("(?:SurfaceView[-\\s\\t]+)?([^/]+).*#\\d+");
    // The bytes of each class, and most bytes next to its ends.
    constexpr const char* kTokens[] = {"",   "SurfaceView", "a",  "/",    "#",    "0",
                                       "9",  ":",           "-",  " ",    "\x08", "\t",
                                       "\n", "\v",          "\r", "\x0e", "\xe9"};
    std::vector<std::string> names;
    for (const char* begin : {"", "SurfaceView-"})
        for (const char* first : kTokens)
            for (const char* second : kTokens)
                for (const char* third : kTokens)
                    for (const char* end : {"", "#7"})
                        names.push_back(std::string(begin) + first + second + third + end);
    for (const std::string& name : names) {
        std::smatch match;
        const bool isMatch = std::regex_match(name, match, expression);
        ASSERT_EQ(android::getPackageName(name), isMatch ? match[1].str() : "") << name;
    }
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
            {filled("#", '0', ""), ""},
            {filled("", '\n', "/\n#0"), ""},
            // It matches, but the steps grow with the square of the length.
            {filled("a#", '0', ""), "a"},
            {"a#" + std::string(128, '0'), "a"},  // ends with a whole block
            {filled("a/", '#', "0"), "a"},
            // It matches at once, but stores a state per byte.
            {letters + "#0", letters},
            {filled("SurfaceView", ' ', "/#0"), " "},
            {filled("SurfaceView", '\t', "a/b#0"), "a"},
            {filled("SurfaceViewa", '-', "b#0"),
             filled("SurfaceViewa", '-', "b#0").substr(0, kMaxBytes - 2)},
            {filled("SurfaceView\n", '\0', "x#0"), std::string(kMaxBytes - 15, '\0') + "x"},
            {filled("a/", '/', "\r#0"), ""},
    };
    for (const auto& [layer, package] : cases)
        EXPECT_TRUE(android::getPackageName(layer) == package) << layer.substr(0, 16);
}
