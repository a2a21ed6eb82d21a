#pragma once

#include <string>
#include <vector>

#include "replay/player.h"
#include "trace/timeline.h"

namespace brevold::replay {

/**
 * Plays a timeline in a process of its own, so that each replay meets a library that was just
 * loaded. The settings go over the device profile of this process. Throws std::runtime_error with
 * what went wrong there, also when the library ended that process. Call it with one thread.
 */
Recording playIsolated(const trace::Timeline& timeline, const std::vector<std::string>& settings);

}  // namespace brevold::replay
