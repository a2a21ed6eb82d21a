#pragma once

#include <string>
#include <vector>

namespace brevold::replay {

/** The library's settings that decide on DOWN and UP requests and on its debug output. */
struct LibrarySwitches {
    bool energyScaling = false;
    bool scalingDown = false;
    bool debug = false;
    /** Layers that the library does not track. */
    std::vector<std::string> debugLayers;
};

/** Reads the settings from the device profile, as brevoldInit does. */
LibrarySwitches readSwitches();

}  // namespace brevold::replay
