#pragma once

#include <optional>
#include <string>

namespace brevold::trace {

struct TimelineOptions {
    /** The layer to focus: its name or a part of it; see findFocusedLayer(). */
    std::optional<std::string> layer;
    /** Display refresh rate in Hz, 1 to 1000, instead of the trace's own. */
    std::optional<double> refreshRateHz;
    /** Moves the focus in time; see followFocus(). Ignored if `layer` is given. */
    bool followsFocus = false;
};

}  // namespace brevold::trace
