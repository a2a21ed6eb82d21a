#include "replay/library_switches.h"

#include "brevold/protocol.h"
#include "brevold/settings.h"
#include "host/device_profile.h"

namespace brevold::replay {

namespace {

bool isOn(const char* property) {
    return android::isOn(host::profileProperty(property, "0").c_str());
}

std::vector<std::string> debugLayers() {
    const std::string list = host::profileProperty(android::kDebugLayersProperty, "NONE");
    std::vector<std::string> layers;
    if (android::isLayerList(list)) android::splitLayerList(list, layers);
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
