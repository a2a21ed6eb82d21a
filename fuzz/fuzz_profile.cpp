// Profile files: reading any input gives a profile or a ProfileError.

#include <cutils/properties.h>

#include "fuzz/fuzz.h"
// The source itself, to reset the profile before each input.
#include "host/device_profile.cpp"

using namespace brevold::host;
using brevold::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const brevold::fuzz::InputFile file;
    file.write(data, size);
    gProfile = {};
    try {
        loadProfile(file.path);
    } catch (const ProfileError& error) {
        file.requireNamed(error.what());
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
