#pragma once

#include <string>
#include <vector>

#include "trace/compositor.h"
#include "trace/timeline.h"

namespace brevold::trace {

/** The toggles of the counter that shows when the compositor's vsyncs are due. */
struct Vsyncs {
    VsyncSource source;
    Compositor::Values toggles;  // empty if the source is VsyncSource::None
};

Vsyncs findVsyncs(const Compositor& compositor);

/** Returns the names of the counters that toggle once in each refresh period, best first. */
std::vector<std::string> periodCounters(const Compositor& compositor);

}  // namespace brevold::trace
