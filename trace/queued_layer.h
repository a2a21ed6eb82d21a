#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/line_count.h"
#include "trace/compositor.h"
#include "trace/trace_point.h"

namespace brevold::trace {

struct DepthChange {
    enum class Kind : uint8_t {
        Frame,  // the application queued a frame
        Latch,  // the compositor took one
        Other,
    };

    Kind kind;
    TracePoint at;
    int32_t depth;  // after the change, at least 0
};

/** A layer and the changes of its queue depth. The compositor's marks have to outlive it. */
struct QueuedLayer {
    std::string name;
    LineCount belowZero;  // taken as 0
    LineCount jumps;      // changes by more than one
    const Compositor::Changes* changes;
    /** A rise on this thread is not a frame. */
    std::optional<int32_t> compositorTid;

    /** Calls visit(DepthChange) for each change of the depth, which is initially 0. */
    template <typename Visit>
    void forEachDepth(Visit visit) const {
        int32_t last = 0;
        for (const CounterChange& change : *changes) {
            const int32_t depth = std::max(change.value, 0);
            if (depth > last) {
                const bool isFrame = change.tid != compositorTid;
                visit(DepthChange{isFrame ? DepthChange::Kind::Frame : DepthChange::Kind::Other,
                                  change.at(), depth});
            } else if (depth < last) {
                visit(DepthChange{DepthChange::Kind::Latch, change.at(), depth});
            }
            last = depth;
        }
    }
};

/** Returns the layers whose depth changes, in the order of their first mention. */
std::vector<QueuedLayer> findLayers(const Compositor& compositor);

/** Returns the name with its number: appends "#0" to a name without one. */
std::string numberedName(std::string layer);

}  // namespace brevold::trace
