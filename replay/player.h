#pragma once

#include "replay/recording.h"
#include "trace/timeline.h"

namespace brevold::replay {

/**
 * Plays the compositor to the library that a device would load, in the trace's time, with the
 * workers stepped after every call. Once per process: the library keeps its state. The device
 * profile must have been filled. Throws std::runtime_error when a library cannot be opened.
 */
Recording play(const trace::Timeline& timeline);

}  // namespace brevold::replay
