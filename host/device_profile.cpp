#include "host/device_profile.h"

#include <cutils/properties.h>

#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string_view>

#include "brevold/protocol.h"

namespace brevold::host {

namespace {

constexpr std::string_view kFeaturePrefix = "feature.";
constexpr std::string_view kAppTypePrefix = "app-type.";
constexpr std::string_view kAnyPackage = "*";

constexpr const char* kSwitches[] = {
        android::kSmoothMotionProperty, android::kFpsSwitchProperty,   android::kJankBoostProperty,
        android::kScalingProperty,      android::kScalingDownProperty,
};
constexpr std::string_view kProperties[] = {
        android::kSmoothMotionProperty, android::kFpsSwitchProperty, android::kJankBoostProperty,
        android::kScalingProperty,      android::kDebugProperty,     android::kScalingDownProperty,
        android::kDebugLayersProperty,
};

struct DeviceProfile {
    std::map<std::string, std::string, std::less<>> properties;
    std::map<int, bool> features;
    std::map<std::string, int32_t, std::less<>> applicationTypes;
};

DeviceProfile gProfile;

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

int32_t parseInt(std::string_view text, const char* expected) {
    int32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw ProfileError("expected " + std::string(expected) + ", got \"" + std::string(text) +
                           "\"");
    }
    return value;
}

void setFeature(std::string_view number, std::string_view value) {
    const int32_t feature = parseInt(number, "feature.4 or feature.5");
    if (feature != android::kJankBoostFeature && feature != android::kEnergyScalingFeature) {
        throw ProfileError("expected feature.4 or feature.5, got feature." + std::string(number));
    }
    const int32_t allowed = parseInt(value, "0 or 1");
    if (allowed != 0 && allowed != 1) {
        throw ProfileError("expected 0 or 1, got \"" + std::string(value) + "\"");
    }
    gProfile.features[feature] = allowed == 1;
}

void setProperty(std::string_view key, std::string_view value) {
    for (const std::string_view known : kProperties) {
        if (key != known) continue;
        if (value.size() >= PROPERTY_VALUE_MAX) {
            throw ProfileError("expected a value of at most " +
                               std::to_string(PROPERTY_VALUE_MAX - 1) + " bytes");
        }
        gProfile.properties[std::string(key)] = value;
        return;
    }
    throw ProfileError(
            "expected a property that the library reads, feature.4, feature.5 or "
            "app-type.<package>, got \"" +
            std::string(key) + "\"");
}

}  // namespace

void setProfileEntry(const std::string& entry) {
    const size_t equals = entry.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw ProfileError("expected key=value, got \"" + entry + "\"");
    }
    const std::string_view key = std::string_view(entry).substr(0, equals);
    const std::string_view value = std::string_view(entry).substr(equals + 1);
    if (startsWith(key, kFeaturePrefix)) {
        setFeature(key.substr(kFeaturePrefix.size()), value);
    } else if (startsWith(key, kAppTypePrefix) && key.size() > kAppTypePrefix.size()) {
        gProfile.applicationTypes[std::string(key.substr(kAppTypePrefix.size()))] =
                parseInt(value, "an application type");
    } else {
        setProperty(key, value);
    }
}

void turnEverythingOn() {
    for (const char* property : kSwitches)
        gProfile.properties[property] = "1";
    gProfile.features = {{android::kJankBoostFeature, true},
                         {android::kEnergyScalingFeature, true}};
    gProfile.applicationTypes[std::string(kAnyPackage)] = android::kTargetAppType;
}

void loadProfile(const std::string& path) {
    if (std::filesystem::is_directory(path)) throw ProfileError(path + ": is a directory");
    std::ifstream file(path);
    if (!file) throw ProfileError(path + ": cannot be opened: " + strerror(errno));
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line.front() == '#') continue;
        try {
            setProfileEntry(line);
        } catch (const ProfileError& error) {
            throw ProfileError(path + ":" + std::to_string(number) + ": " + error.what());
        }
    }
    if (file.bad()) throw ProfileError(path + ": cannot be read");
}

std::string profileProperty(const char* key, const char* fallback) {
    const auto found = gProfile.properties.find(std::string_view(key));
    if (found != gProfile.properties.end()) return found->second;
    return fallback == nullptr ? "" : fallback;
}

bool isFeatureAllowed(int feature) {
    const auto found = gProfile.features.find(feature);
    return found != gProfile.features.end() && found->second;
}

int32_t applicationType(const std::string& package) {
    const auto& types = gProfile.applicationTypes;
    auto found = types.find(package);
    if (found == types.end()) found = types.find(kAnyPackage);
    return found == types.end() ? android::kUnknownAppType : found->second;
}

}  // namespace brevold::host

/** Debian's libcutils lacks this function. */
int property_get(const char* key, char* value, const char* fallback) {
    const std::string text = brevold::host::profileProperty(key, fallback);
    const size_t length = std::min<size_t>(text.size(), PROPERTY_VALUE_MAX - 1);
    memcpy(value, text.data(), length);
    value[length] = '\0';
    return static_cast<int>(length);
}
