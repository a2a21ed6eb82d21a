#pragma once

#include <string>
#include <vector>

#include "plot/plot.h"
#include "programs/replay_options.h"
#include "replay/recording.h"
#include "report/added_marks.h"
#include "trace/trace_form.h"
#include "trace/trace_input.h"

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

/**
 * Writes a trace with the marks of its replay and further tracks. The input has to allow repeated
 * reading. Throws InputError or OutputError.
 */
void writeMarkedTrace(const std::string& path, trace::TraceInput& input,
                      const trace::Timeline& timeline, const trace::TraceForm& form,
                      const replay::Recording& recording,
                      const std::vector<report::AddedTrack>& tracks);

/** Draws a picture in a file, replacing it. Throws OutputError or std::runtime_error. */
void writePlot(const std::string& path, const plot::Plot& plot);

/** Returns the list of a trace's layers. Throws InputError. */
std::string listLayers(const std::string& path, const ReplayOptions& options);

}  // namespace brevold
