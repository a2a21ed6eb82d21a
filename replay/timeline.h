#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "replay/ftrace_reader.h"
#include "replay/input_error.h"
#include "replay/trace_input.h"

namespace brevold::replay {

struct Layer {
    std::string name;  // with its number: "#0" is appended where the trace has none
    int32_t frames;    // rises of its queue depth
};

struct TimelineEvent {
    enum class Kind : uint8_t { Period, Depth, CompositionBegin, CompositionEnd, Vsync };

    int64_t timeNs;
    Kind kind;
    int32_t layer;     // Depth: index into Timeline::layers
    int32_t depth;     // Depth: the depth from now on, at least 0; it is 0 before the first
    int64_t periodNs;  // Period: the refresh period from now on
};

/** What the compositor of a trace did. Times are the trace's own. */
struct Timeline {
    /** Those whose depth changes, in the order of their first mention; at least one has frames. */
    std::vector<Layer> layers;
    /** The layer asked for, else the first of those with most frames. */
    size_t focusedLayer = 0;
    /** In the order of time, then of the trace; a Period at startNs comes first. */
    std::vector<TimelineEvent> events;
    /** First and last event of the trace, whatever its kind. */
    int64_t startNs = 0;
    int64_t endNs = 0;
    /** For "from ...": "VSYNC toggles", "postFramebuffer sections"; "VSYNC" for the last. */
    std::string periodSource;
    std::string compositionSource;
    std::string vsyncSource;
    /** What is odd in the trace, a kind each, with its count and its first line. */
    std::vector<std::string> warnings;
    int32_t compositorPid = 0;
    int32_t compositorTid = 0;
    // As the reader's.
    MarkStyle style;
    std::unordered_map<int32_t, std::string> threads;
};

struct TimelineOptions {
    /** Name of the layer to focus; its "#0" may be left out. */
    std::optional<std::string> layer;
    /** Refresh rate over what the trace tells, 1 to 1000. */
    std::optional<double> refreshRateHz;
};

/** Reads a whole trace. Throws InputError. */
Timeline readTimeline(TraceInput& input, const TimelineOptions& options);
Timeline readTimeline(const std::string& path, const TimelineOptions& options);

/** Reads a whole ftrace text from a stream that messages call by the path. Throws InputError. */
Timeline readTimeline(std::istream& input, const std::string& path, const TimelineOptions& options);

}  // namespace brevold::replay
