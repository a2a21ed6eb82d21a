#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/line_count.h"
#include "trace/compositor.h"
#include "trace/trace_point.h"

namespace brevold::trace {

struct DepthChange {
    TracePoint at;
    int32_t depth;  // after the change, at least 0
    bool isFrame;   // the application queued a frame; else the compositor took one
};

/** A layer and the changes of its queue depth. */
struct QueuedLayer {
    std::string name;
    std::vector<DepthChange> depths;  // not empty
    LineCount belowZero;              // taken as 0
    LineCount jumps;                  // changes by more than one
};

/** Returns the layers whose depth changes, in the order of their first mention. */
std::vector<QueuedLayer> findLayers(const Compositor& compositor);

/** Returns the name with its number: appends "#0" to a name without one. */
std::string numberedName(std::string layer);

}  // namespace brevold::trace
