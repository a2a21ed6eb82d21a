#pragma once

#include <string>

#include "programs/replay_options.h"

namespace brevold {

/** Returns true if one table or JSON object combines the results of all traces. */
bool combinesResults(const ReplayOptions& options);

/**
 * Replays one trace and writes its files. Returns the text of its summary, or the bytes of its
 * report::TraceResult if results are combined. Throws a std::exception, with a message that names
 * the trace or the output.
 */
std::string replayTrace(const std::string& path, const OutputFiles& files,
                        const ReplayOptions& options);

/** Returns the list of a trace's layers. Throws InputError. */
std::string listLayers(const std::string& path, const ReplayOptions& options);

}  // namespace brevold
