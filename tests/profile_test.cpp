// Profile files: both notations, and a clear error for everything else.

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "host/device_profile.h"
#include "tests/inputs.h"

namespace brevold::host {
namespace {

/** Loads a file of these lines, or a path. Returns the error without the name of the file. */
std::string load(const std::string& text) {
    const bool isPath = text[0] == '/';
    const std::string path =
            isPath ? text : testing::TempDir() + "profile" + std::to_string(getpid());
    if (!isPath) std::ofstream(path) << text;
    const std::string error = test::errorOf<ProfileError>([&] { loadProfile(path); });
    if (!isPath) unlink(path.c_str());
    return error.substr(error.empty() || isPath ? 0 : path.size());
}

TEST(ProfileTest, TakesEntriesAndTheOutputOfGetprop) {
    EXPECT_EQ(load("# comment\n\n  vendor.perf.pfar.enable = 1 \r\n feature.5=1\nfeature.4=0\n"
                   "app-type.a.b=2\napp-type.*=7\n[ro.build.id]: [x=y]\n[ro.boot.history]: "
                   "[a,1\n\n#b]\n"
                   "[vendor.perf.jr10.enable]: [0]\n[vendor.perf.brevold.debug.layers]: [a b]"),
              "");
    EXPECT_EQ(profileProperty("vendor.perf.pfar.enable", "0"), "1");
    EXPECT_EQ(profileProperty("vendor.perf.jr10.enable", "1"), "0");
    EXPECT_EQ(profileProperty("vendor.perf.brevold.debug.layers", "NONE"), "a b");
    EXPECT_EQ(profileProperty("vendor.perf.brevold.debug", "fallback"), "fallback");
    EXPECT_TRUE(isFeatureAllowed(5));
    EXPECT_FALSE(isFeatureAllowed(4));
    EXPECT_EQ(applicationType("a.b") * 10 + applicationType("a"), 27);
    setProfileEntry("vendor.perf.pfar.enable=0");
    EXPECT_EQ(profileProperty("vendor.perf.pfar.enable", "1"), "0");
    checkProfileEntry("vendor.perf.pfar.enable=1");
    EXPECT_EQ(profileProperty("vendor.perf.pfar.enable", "1"), "0");
    EXPECT_THROW(checkProfileEntry("feature.4=x"), ProfileError);
}

TEST(ProfileTest, NamesTheLineAndTheProblem) {
    const std::string layers = "vendor.perf.brevold.debug.layers=";
    const std::pair<std::string, const char*> cases[] = {
            {"\nfeature.5", ":2: expected key=value, got \"feature.5\""},
            {"\n[ro.a]: [b\n[ro.c]: [d\n", ":2: expected a line that ends in ]"},
            {"[ro.a]: [b\nc]\n=1", ":3: expected key=value, got \"=1\""},
            {"feature.6=1", ":1: expected feature.4 or feature.5, got feature.6"},
            {"feature.x=1", ":1: expected feature.4 or feature.5, got \"x\""},
            {"feature.5=2", ":1: expected 0 or 1, got \"2\""},
            {"app-type.a=b", ":1: expected an application type, got \"b\""},
            {layers + std::string(92, 'a'), ":1: expected a value of at most 91 bytes"},
            {"feature.5=1\n\nfeature.5 = 0", ":3: the key \"feature.5\" is already set in line 1"},
            {"/", "/: expected a profile, got a directory"},
            {"/none", "/none: cannot be opened: No such file or directory"},
            {"app-type.=1",
             ":1: unknown key \"app-type.\"; valid are vendor.display.use_smooth_motion, "
             "vendor.perf.fps_switch.enable, vendor.perf.jr10.enable, vendor.perf.pfar.enable, "
             "vendor.perf.brevold.debug, vendor.perf.pfar.down.enable, "
             "vendor.perf.brevold.debug.layers, feature.4, feature.5, app-type.PACKAGE"},
    };
    for (const auto& [text, error] : cases)
        EXPECT_EQ(load(text), error);
    EXPECT_EQ(load(layers + std::string(91, 'a')), "");
}

}  // namespace
}  // namespace brevold::host
