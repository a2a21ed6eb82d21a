#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "replay/hint.h"
#include "replay/player.h"
#include "replay/timeline.h"

namespace brevold::replay {

struct RequestSummary {
    int32_t count = 0;
    // Of the kinds that have a scale; 0 without requests.
    double leastScale = 0.0;
    double meanScale = 0.0;
    double mostScale = 0.0;
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
    std::string rateSource;
    int32_t compositions;
    std::string compositionSource;
    int32_t vsyncs;
    std::string vsyncSource;
    int32_t boostVerdicts;
    bool isAnyFeatureOn;
    /** False when the library's debug output, which tells the modes, is off. */
    bool hasModes;
    std::array<int64_t, 6> modeNs;
    /** In the order of kHintKinds. */
    std::array<RequestSummary, std::size(kHintKinds)> requests;
    /** Time under a DOWN hint: from the hint, for its duration or until the next "QB" hint. */
    int64_t downNs;
    /** Of that time, weighted by it. */
    double meanDownScale;
    int32_t errorLines;
    /** Texts at error priority, but for the measuring windows' lines, with their counts. */
    std::map<std::string, int32_t> errors;
    int32_t windowLines;
    std::vector<std::string> warnings;

    const RequestSummary& of(HintKind kind) const { return requests[static_cast<size_t>(kind)]; }
};

Summary summarise(const std::string& trace, const Timeline& timeline, const Recording& recording);

void print(const Summary& summary, std::ostream& out);

/** One trace's replay, and the second one with other settings where there was one. */
struct TraceResult {
    Summary summary;
    std::optional<Summary> vs;
};

/** One row a replay. */
void printRows(const std::vector<TraceResult>& results, std::ostream& out);

}  // namespace brevold::replay
