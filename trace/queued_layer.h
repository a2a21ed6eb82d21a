#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "base/line_count.h"
#include "trace/change_list.h"
#include "trace/compositor.h"
#include "trace/timeline.h"
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

/** A layer and the changes of its queue depth, which is initially 0. */
struct QueuedLayer {
    Layer layer;
    ChangeList changes;
    /** A rise on this thread is not a frame. */
    std::optional<int32_t> compositorTid;
    int32_t depth = 0;  // before `changes`

    template <typename Visit>
    void forEachDepth(Visit visit) const {
        int32_t last = depth;
        changes.forEach([&](const CounterChange& change) {
            if (const auto depthChange = follow(change, &last)) visit(*depthChange);
        });
    }

    /** Removes the first change of the depth from `changes`. Returns false if none is left. */
    bool takeDepth(DepthChange* change);

  private:
    std::optional<DepthChange> follow(const CounterChange& change, int32_t* last) const;
};

struct QueuedLayers {
    std::deque<QueuedLayer> layers;
    LineCount belowZero;  // taken as 0
    LineCount jumps;      // changes by more than one
};

/** Finds the layers whose depth changes, in the order of their first mention. */
QueuedLayers takeLayers(Compositor& compositor);

/** Returns the name with its number: appends "#0" to a name without one. */
std::string numberedName(std::string layer);

}  // namespace brevold::trace
