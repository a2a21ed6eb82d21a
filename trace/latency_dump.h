#pragma once

#include <string>
#include <string_view>

#include "trace/byte_source.h"
#include "trace/timeline.h"
#include "trace/timeline_options.h"

namespace brevold::trace {

/** Returns true if a text that begins with `head` is a latency dump. */
bool isLatencyDump(std::string_view head);

/**
 * Reads the output of "dumpsys SurfaceFlinger --latency LAYER". A frame is queued when its
 * rendering is done, or at its desired present if the rendering was reported done after the
 * present. It is latched one refresh period before its present, which is a vsync. Frames that were
 * not presented and an incomplete last row are omitted. The layer is named options.layer, else
 * "layer". Throws InputError, with messages that begin with `path`.
 */
Timeline readLatencyDump(ByteSource& text, const std::string& path, const TimelineOptions& options);

}  // namespace brevold::trace
