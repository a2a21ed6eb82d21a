#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/hint.h"
#include "replay/recording.h"
#include "trace/timeline.h"

namespace brevold::replay {

struct RequestSummary {
    int32_t count = 0;
    // Of the kinds that have a scale; 0 without requests.
    double minScale = 0.0;
    double meanScale = 0.0;
    double maxScale = 0.0;
};

/** What an engineer reads at a glance. */
struct Summary {
    std::string trace;
    int64_t durationNs;
    std::string layer;
    int32_t frames;
    /** Other layers with frames, and their frames. */
    int32_t otherLayers;
    int32_t otherFrames;
    struct Rate {
        int64_t fromNs;
        double hz;
    };
    /** Times from the start of the trace. */
    std::vector<Rate> rates;
    trace::PeriodSource periodSource;
    std::string periodCounter;
    int32_t compositions;
    trace::CompositionSource compositionSource;
    int32_t vsyncs;
    trace::VsyncSource vsyncSource;
    int32_t boostVerdicts;
    bool isAnyFeatureOn;
    /** False when the library's debug output, which tells the modes, is off. */
    bool hasModes;
    std::array<int64_t, 6> modeNs;
    /** In the order of kHintKinds. */
    std::array<RequestSummary, std::size(host::kHintKinds)> requests;
    /** Time under a DOWN hint: from the hint, for its duration or until the next "QB" hint. */
    int64_t downNs;
    /** Of that time, weighted by it. */
    double meanDownScale;
    int32_t errorLines;
    /** Texts at error priority, but for the measuring windows' lines, with their counts. */
    std::map<std::string, int32_t> errors;
    int32_t windowLines;
    std::vector<trace::TraceWarning> warnings;

    const RequestSummary& of(host::HintKind kind) const {
        return requests[static_cast<size_t>(kind)];
    }
};

Summary summarise(const std::string& trace, const trace::Timeline& timeline,
                  const Recording& recording);

/** One trace's replay, and the second one with other settings where there was one. */
struct TraceResult {
    Summary summary;
    std::optional<Summary> vs;
};

}  // namespace brevold::replay
