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
 * Writes a Perfetto trace with the marks of a replay and of further tracks; see AddedMarks. The
 * packets of the trace up to the last whole one are unchanged; packets with the added threads,
 * counters and events follow. Their times are boot time, as those of the timeline are. The
 * compositor's thread keeps its ids, so viewers show its marks on the track that the thread has
 * already; the other tracks are new.
 *
 * `packets` are the bytes from which the timeline was read. Error messages begin with `path`.
 */
void writePerfetto(trace::ByteSource& packets, const std::string& path,
                   const trace::Timeline& timeline, const trace::TraceForm& form,
                   const replay::Recording& recording, std::ostream& out,
                   const std::vector<AddedTrack>& tracks = {});

}  // namespace brevold::report
