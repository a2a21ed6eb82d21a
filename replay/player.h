#pragma once

#include "replay/recording.h"
#include "trace/timeline.h"

namespace brevold::replay {

/**
 * Plays a timeline to the library in the trace's own time. The library's workers finish their work
 * after every call. Fill the device profile first. Call it once per process, because the library
 * keeps its state. Throws std::runtime_error if a library cannot be opened.
 */
Recording play(const trace::Timeline& timeline, const PlayOptions& options);

}  // namespace brevold::replay
