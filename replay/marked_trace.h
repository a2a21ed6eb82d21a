#pragma once

#include <ostream>
#include <string>

#include "replay/recording.h"
#include "trace/byte_source.h"
#include "trace/timeline.h"
#include "trace/trace_form.h"

namespace brevold::replay {

/**
 * Writes a trace with what the library did in it: the lines as they are, and after those of a time
 * what is added for it, in the form of the trace's own marks. Added are the library's sections, on
 * the compositor's thread and on its workers, and for each channel of the hints a counter and, on a
 * thread of its own, a section for as long as a hint holds. The added threads belong to the
 * compositor's process and have ids that the trace does not use.
 *
 * `text` is the text from which the timeline was read. Error messages begin with `path`.
 */
void writeTrace(trace::ByteSource& text, const std::string& path, const trace::Timeline& timeline,
                const trace::TraceForm& form, const Recording& recording, std::ostream& out);

}  // namespace brevold::replay
