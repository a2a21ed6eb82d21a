#pragma once

#include <array>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "brevold/protocol.h"
#include "replay/recording.h"
#include "replay/time_window.h"
#include "report/frame_figures.h"
#include "report/request_summary.h"
#include "trace/timeline.h"

namespace brevold::report {

/** The figures of one replay in a window of its trace. */
struct Summary {
    /** The trace's name, as messages show it. */
    std::string trace;
    /** The first event, in the trace's own time. All other times are since then. */
    int64_t startNs;
    /** Of the whole trace. */
    int64_t durationNs;
    // The window.
    int64_t fromNs;
    int64_t toNs;
    /** A layer in focus, and its frames meanwhile. */
    struct Focus {
        int64_t fromNs;
        std::string layer;
        int32_t frames;
    };
    /** In time order; at least one. */
    std::vector<Focus> focuses;
    /** Frames of layers in focus. */
    int32_t frames;
    FrameFigures frameFigures;
    /** The frames of layers in focus by their outcome, in the order of replay::kFrameOutcomes. */
    std::array<int32_t, std::size(replay::kFrameOutcomes)> outcomes;
    /** Frames of layers without the focus, and the number of those layers. */
    int32_t otherFrames;
    int32_t otherLayers;
    struct LayerFrames {
        std::string layer;
        int32_t frames;
    };
    /** The layers with the most frames, in descending order of frames; at most five. */
    std::vector<LayerFrames> topLayers;
    /** The layer with the most frames in the trace, if an application's layer was preferred. */
    std::optional<std::string> passedOverLayer;
    struct Rate {
        int64_t fromNs;
        double hz;
    };
    /** The display's refresh rates in time order; at least one. */
    std::vector<Rate> rates;
    /** The time at each rate, which is rounded to a whole number of Hz. */
    std::map<int64_t, int64_t> rateNs;
    trace::PeriodSource periodSource;
    /** The counter's name if periodSource is VsyncToggles, else empty. */
    std::string periodCounter;
    int32_t compositions;
    trace::CompositionSource compositionSource;
    replay::BoostDepth boostDepth;
    int32_t vsyncs;
    trace::VsyncSource vsyncSource;
    /** The platform's verdicts on frames of layers in focus, if the trace has any. */
    struct FrameVerdicts {
        int32_t frames;
        int32_t late;
        int32_t dropped;
    };
    std::optional<FrameVerdicts> frameVerdicts;
    int32_t boostVerdicts;
    bool isAnyFeatureOn;
    /** False if the library's debug output, which reports the modes, is off. */
    bool hasModes;
    /** Time spent in each frame-rate mode. */
    std::array<int64_t, std::size(android::kModeLabels)> modeNs;
    /** In the order of kHintKinds. */
    RequestSummaries requests;
    /** Lines that the library logged at error priority, including those of measuring windows. */
    int32_t errorLines;
    /** The lines that report a measuring window. */
    int32_t windowLines;
    /** The other texts at error priority, with their counts. */
    std::map<std::string, int32_t> errors;
    std::vector<trace::TraceWarning> warnings;

    int64_t windowNs() const { return toNs - fromNs; }
    bool isWholeTrace() const { return windowNs() == durationNs; }
    int32_t of(replay::FrameOutcome outcome) const {
        return outcomes[static_cast<size_t>(outcome)];
    }
    const RequestSummary& of(host::HintKind kind) const {
        return requests[static_cast<size_t>(kind)];
    }
};

Summary summarise(const std::string& trace, const trace::Timeline& timeline,
                  const replay::Recording& recording, const replay::TimeWindow& window);

/** The replay of one trace. */
struct TraceResult {
    Summary summary;
    /** The replay with the settings of --vs, if there are any. */
    std::optional<Summary> vs;
};

}  // namespace brevold::report
