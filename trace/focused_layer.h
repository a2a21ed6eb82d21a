#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "trace/timeline.h"

namespace brevold::trace {

/**
 * Returns true if the name of a layer holds a package and a component, as names of applications'
 * layers do: "com.example/com.example.Main#7", "SurfaceView[com.example/.Main](BLAST)#9".
 */
bool isApplicationLayer(std::string_view name);

struct FocusedLayer {
    size_t layer;
    /** The layer with the most frames, if it was passed over because it is not an application's. */
    std::optional<size_t> passedOver;
};

/**
 * Finds the layer with this name: the whole name, the name without its number, or a part that no
 * other name contains. Without a name, finds the first layer with the most frames among the
 * applications' layers, or among all layers if no application's has frames. Layers without frames
 * are ignored. Throws InputError, with a message that begins with `path`, if there is no such layer
 * or the name fits several.
 */
FocusedLayer findFocusedLayer(const std::vector<Layer>& layers,
                              const std::optional<std::string>& name, const std::string& path);

/**
 * Moves the focus of a whole timeline at each second since its start to the layer with the most
 * frames in that second, among the same layers as findFocusedLayer() without a name. Keeps the
 * focus if no layer has more frames in that second.
 */
void followFocus(Timeline& timeline);

}  // namespace brevold::trace
