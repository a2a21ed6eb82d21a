#pragma once

#include <ostream>
#include <string>

#include "replay/recording.h"
#include "trace/byte_source.h"
#include "trace/timeline.h"
#include "trace/trace_form.h"

namespace brevold::replay {

/**
 * Writes a trace with marks of the replay. The trace's own lines are unchanged. A mark follows the
 * lines of its time and has the notation of the trace's own marks. Added are:
 *
 *   - the library's sections, on the compositor's thread and on the library's workers
 *
 *   - for each channel of hints, a counter, and sections on a separate thread while a hint holds
 *
 * The added threads belong to the compositor's process and have ids that the trace does not use.
 *
 * `text` is the text from which the timeline was read; `path` is its name in messages.
 */
void writeTrace(trace::ByteSource& text, const std::string& path, const trace::Timeline& timeline,
                const trace::TraceForm& form, const Recording& recording, std::ostream& out);

}  // namespace brevold::replay
