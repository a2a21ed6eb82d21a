#pragma once

#include <optional>
#include <string>

namespace brevold::trace {

struct TimelineOptions {
    /** Name of the layer to focus; its "#0" may be omitted. */
    std::optional<std::string> layer;
    /** Display refresh rate in Hz, 1 to 1000, instead of the trace's own. */
    std::optional<double> refreshRateHz;
};

}  // namespace brevold::trace
