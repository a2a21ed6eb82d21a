#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "trace/trace_warning.h"

namespace brevold::trace {

struct Layer {
    std::string name;  // with its number: "#0" is appended where the trace has none
    int32_t frames;    // Frame events of this layer
    // Times of the first and the last Frame event.
    int64_t firstFrameNs = 0;
    int64_t lastFrameNs = 0;
};

struct TimelineEvent {
    enum class Kind : uint8_t {
        Period,  // the display's refresh period changes
        Frame,   // the application queues a frame; the depth rises
        Depth,   // the queue depth changes in any other way
        CompositionBegin,
        CompositionEnd,
        Vsync,
        Focus,  // another layer gets the focus
    };

    int64_t timeNs;
    Kind kind;
    int32_t layer;     // Frame, Depth, Focus: index into Timeline::layers
    int32_t depth;     // Frame, Depth: the queue depth after the event, at least 0; initially 0
    int32_t tid;       // the thread of the event; 0 if unknown
    int64_t periodNs;  // Period: the refresh period after the event
};

/** Where the refresh period was taken from. */
enum class PeriodSource : uint8_t {
    Option,           // the caller gave the rate
    SetPeriod,        // values of the counter VSR-setPeriod
    DisplayMode,      // values of Timeline::periodCounter, which a display was set to
    PredictedPeriod,  // values of Timeline::periodCounter, which the compositor measured
    VsyncToggles,     // distances between the toggles of Timeline::periodCounter
    FrameIntervals,   // no counter of the trace shows the display's vsyncs
    Default,          // and its frames are not steady
    LatencyDump,      // the first line of a latency dump
};

/** Where the compositions were taken from. The first values are sections of the compositor. */
enum class CompositionSource : uint8_t {
    OnMessageRefresh,
    HandleMessageRefresh,
    Composite,
    PostFramebuffer,
    Commit,
    Latches,       // the trace has no such sections
    PresentTimes,  // one refresh period before the presents of a latency dump
};

/** Where the vsyncs were taken from. */
enum class VsyncSource : uint8_t {
    None,
    VsyncSf,       // toggles of the counter VSYNC-sf
    Vsync,         // toggles of the counter VSYNC
    PresentTimes,  // of a latency dump
};

/** The platform's own verdict on a frame. */
enum class FrameVerdict : uint8_t { Unknown, OnTime, Late, Early, Dropped };

/** A frame that the platform judged, from the frame timeline of a Perfetto trace. */
struct JudgedFrame {
    int64_t beginNs;
    int64_t endNs;
    FrameVerdict verdict;
};

/** The compositor's activity in a trace. Times are the trace's own, in nanoseconds. */
struct Timeline {
    /** Layers whose depth changes, in the order of their first mention. Not empty. */
    std::vector<Layer> layers;
    /** The layer with the focus at startNs; see findFocusedLayer(). Focus events move the focus. */
    size_t focusedLayer = 0;
    /** See FocusedLayer::passedOver. */
    std::optional<size_t> passedOverLayer;
    /** Ordered by time, then as in the trace. The first is a Period at startNs. */
    std::deque<TimelineEvent> events;
    /** Times of the first and the last event of the trace, whatever its kind. */
    int64_t startNs = 0;
    int64_t endNs = 0;
    PeriodSource periodSource = PeriodSource::Default;
    /** The name of the counter that periodSource mentions, else empty. */
    std::string periodCounter;
    CompositionSource compositionSource = CompositionSource::Latches;
    VsyncSource vsyncSource = VsyncSource::None;
    /** Frames of layers in focus, in the order of their ends, if the trace has verdicts. */
    std::optional<std::vector<JudgedFrame>> judgedFrames;
    std::vector<TraceWarning> warnings;
};

}  // namespace brevold::trace
