#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "replay/recording.h"
#include "report/added_marks.h"
#include "trace/byte_source.h"
#include "trace/timeline.h"
#include "trace/trace_form.h"

namespace brevold::report {

/**
 * Writes a text trace with the marks of a replay and of further tracks; see AddedMarks. The trace's
 * own lines are unchanged. A mark follows the lines of its time and has the notation of the trace's
 * own marks. The text of a page gets a task_rename event for each of its processes that the page
 * names.
 *
 * `text` is the text from which the timeline was read. Error messages begin with `path`.
 */
void writeTrace(trace::ByteSource& text, const std::string& path, const trace::Timeline& timeline,
                const trace::TraceForm& form, const replay::Recording& recording, std::ostream& out,
                const std::vector<AddedTrack>& tracks = {});

}  // namespace brevold::report
