#pragma once

#include <optional>
#include <string>
#include <vector>

#include "trace/timeline.h"

namespace brevold::trace {

/**
 * Returns the index of the layer with this name, of which a "#0" may be omitted; without a name,
 * that of the first layer with the most frames. Throws InputError, with a message that begins with
 * `path`, if there is no such layer.
 */
size_t findFocusedLayer(const std::vector<Layer>& layers, const std::optional<std::string>& name,
                        const std::string& path);

}  // namespace brevold::trace
