#include "replay/library_switches.h"

#include <cstdlib>
#include <string_view>

#include "base/text.h"
#include "brevold/perf_client.h"
#include "brevold/protocol.h"
#include "host/device_profile.h"

namespace brevold::replay {

namespace {

bool isOn(const char* property) {
    return atoi(host::profileProperty(property, "0").c_str()) == 1;
}

std::vector<std::string> debugLayers() {
    const std::string list = host::profileProperty(android::kDebugLayersProperty, "NONE")
                                     .substr(0, android::kSettingSize - 1);
    std::vector<std::string> layers;
    if (list.compare(0, 4, "NONE") == 0) return layers;
    for (std::string_view rest = list; !rest.empty();)
        layers.emplace_back(takeUntil(' ', &rest));
    return layers;
}

}  // namespace

LibrarySwitches readSwitches() {
    const bool isScalingAllowed = host::isFeatureAllowed(android::kEnergyScalingFeature);
    if (!isScalingAllowed && !host::isFeatureAllowed(android::kJankBoostFeature)) return {};
    return {isScalingAllowed && isOn(android::kScalingProperty),
            isOn(android::kScalingDownProperty), isOn(android::kDebugProperty), debugLayers()};
}

}  // namespace brevold::replay
