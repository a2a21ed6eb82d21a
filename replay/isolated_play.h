#pragma once

#include <string>
#include <vector>

#include "replay/recording.h"
#include "trace/timeline.h"

namespace brevold::replay {

/**
 * Plays a timeline in a child process, because the library keeps its state for the life of a
 * process. The child starts with this process's device profile; `settings` override entries of it.
 *
 * Throws std::runtime_error if the replay fails, also if the library ends the child. Call it from a
 * process with one thread, because it forks.
 */
Recording playIsolated(const trace::Timeline& timeline, const std::vector<std::string>& settings,
                       const PlayOptions& options = {});

}  // namespace brevold::replay
