// Profile files: reading any input gives a profile or a ProfileError.

#include <cutils/properties.h>
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/fuzz.h"
// The source itself, to reset the profile before each input.
#include "host/device_profile.cpp"

using namespace brevold::host;
using brevold::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const int file = memfd_create("profile", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    require(ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size),
            "the profile is written");
    gProfile = {};
    try {
        loadProfile(path);
    } catch (const ProfileError& error) {
        require(std::string(error.what()).rfind(path + ":", 0) == 0, "an error names the file");
    }
    for (const std::string_view key : kProperties) {
        char value[PROPERTY_VALUE_MAX];
        property_get(key.data(), value, "fallback");
        // A zero byte ends a property, but not a text.
        require(strcmp(value, profileProperty(key.data(), "fallback").c_str()) == 0,
                "a value fits a property");
    }
    for (const auto& [package, type] : gProfile.applicationTypes)
        require(applicationType(package) == type, "an application's type is the profile's");
    require(gProfile.features.size() <= 2 && !isFeatureAllowed(3), "two features");
    return 0;
}
