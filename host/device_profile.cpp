#include "host/device_profile.h"

#include <cutils/properties.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string_view>

#include "base/descriptor.h"
#include "base/text.h"
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

std::string_view trim(std::string_view text) {
    return trimEnd(trimStart(text));
}

int32_t parseInt(std::string_view text, const char* expected) {
    int32_t value = 0;
    if (!parseWhole(text, &value)) {
        throw ProfileError("expected " + std::string(expected) + ", got \"" + std::string(text) +
                           "\"");
    }
    return value;
}

bool parseFeature(std::string_view number, std::string_view value, int32_t* feature) {
    *feature = parseInt(number, "feature.4 or feature.5");
    if (*feature != android::kJankBoostFeature && *feature != android::kEnergyScalingFeature) {
        throw ProfileError("expected feature.4 or feature.5, got feature." + std::string(number));
    }
    const int32_t allowed = parseInt(value, "0 or 1");
    if (allowed != 0 && allowed != 1) {
        throw ProfileError("expected 0 or 1, got \"" + std::string(value) + "\"");
    }
    return allowed == 1;
}

bool isKnownProperty(std::string_view key) {
    return std::find(std::begin(kProperties), std::end(kProperties), key) != std::end(kProperties);
}

std::string validKeys() {
    std::string keys;
    for (const std::string_view property : kProperties)
        keys += std::string(property) + ", ";
    return keys + "feature.4, feature.5, app-type.PACKAGE";
}

void setProperty(std::string_view key, std::string_view value, DeviceProfile& profile) {
    if (!isKnownProperty(key)) {
        throw ProfileError("unknown key \"" + std::string(key) + "\"; valid are " + validKeys());
    }
    if (value.size() >= PROPERTY_VALUE_MAX) {
        throw ProfileError("expected a value of at most " + std::to_string(PROPERTY_VALUE_MAX - 1) +
                           " bytes");
    }
    profile.properties[std::string(key)] = value;
}

struct Entry {
    std::string_view key;
    std::string_view value;
    bool isGetprop;
};

constexpr std::string_view kGetpropMiddle = "]: [";

/** Returns true for "[key]: [value" without the bracket that ends the value. */
bool isOpenGetpropEntry(std::string_view text) {
    return startsWith(text, "[") && text.find(kGetpropMiddle) != std::string_view::npos &&
           text.back() != ']';
}

/** "vendor.perf.pfar.enable=1", or as getprop prints it "[vendor.perf.pfar.enable]: [1]". */
Entry parseEntry(std::string_view text) {
    text = trim(text);
    if (isOpenGetpropEntry(text)) throw ProfileError("expected a line that ends in ]");
    const size_t middle = text.find(kGetpropMiddle);
    if (startsWith(text, "[") && middle != std::string_view::npos) {
        const size_t value = middle + kGetpropMiddle.size();
        return {text.substr(1, middle - 1), text.substr(value, text.size() - 1 - value), true};
    }
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        throw ProfileError("expected key=value, got \"" + std::string(text) + "\"");
    }
    return {trim(text.substr(0, equals)), trim(text.substr(equals + 1)), false};
}

void apply(const Entry& entry, DeviceProfile& profile) {
    if (startsWith(entry.key, kFeaturePrefix)) {
        int32_t feature;
        const bool allowed =
                parseFeature(entry.key.substr(kFeaturePrefix.size()), entry.value, &feature);
        profile.features[feature] = allowed;
    } else if (startsWith(entry.key, kAppTypePrefix) && entry.key.size() > kAppTypePrefix.size()) {
        const int32_t type = parseInt(entry.value, "an application type");
        profile.applicationTypes[std::string(entry.key.substr(kAppTypePrefix.size()))] = type;
    } else {
        setProperty(entry.key, entry.value, profile);
    }
}

/** Applies one line of a file; `lines` has the line of each key before it. */
void applyLine(std::string_view line, int number, std::map<std::string, int>* lines) {
    const Entry entry = parseEntry(line);
    // getprop prints every property of the device.
    if (entry.isGetprop && !isKnownProperty(entry.key)) return;
    const auto [first, isNew] = lines->emplace(entry.key, number);
    if (!isNew) {
        throw ProfileError("the key \"" + first->first + "\" is already set in line " +
                           std::to_string(first->second));
    }
    apply(entry, gProfile);
}

}  // namespace

void setProfileEntry(const std::string& text) {
    apply(parseEntry(text), gProfile);
}

void checkProfileEntry(const std::string& text) {
    DeviceProfile unused;
    apply(parseEntry(text), unused);
}

void turnEverythingOn() {
    for (const char* property : kSwitches)
        gProfile.properties[property] = "1";
    gProfile.features = {{android::kJankBoostFeature, true},
                         {android::kEnergyScalingFeature, true}};
    gProfile.applicationTypes[std::string(kAnyPackage)] = android::kTargetAppType;
}

void loadProfile(const std::string& path) {
    if (std::filesystem::is_directory(path)) {
        throw ProfileError(path + ": expected a profile, got a directory");
    }
    std::ifstream file(path);
    if (!file) throw ProfileError(path + ": cannot be opened: " + errnoText(errno));
    std::map<std::string, int> lines;
    std::string line;
    int lineCount = 0;
    while (std::getline(file, line)) {
        const int number = ++lineCount;
        std::string text(trim(line));
        if (text.empty() || text.front() == '#') continue;
        while (isOpenGetpropEntry(text) && std::getline(file, line)) {
            text.append("\n").append(trimEnd(line));
            ++lineCount;
        }
        try {
            applyLine(text, number, &lines);
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
