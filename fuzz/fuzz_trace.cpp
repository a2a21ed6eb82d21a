// Traces: whatever they hold, reading one ends with an orderly timeline or with an InputError.

#include <sstream>
#include <string>

#include "fuzz/fuzz.h"
#include "replay/timeline.h"

using namespace brevold::replay;
using brevold::fuzz::require;

namespace {

void checkTimeline(const Timeline& timeline) {
    require(timeline.focusedLayer < timeline.layers.size(), "a layer is focused");
    require(!timeline.events.empty() && timeline.events[0].kind == TimelineEvent::Kind::Period &&
                    timeline.events[0].timeNs == timeline.startNs,
            "a period stands at the start");
    int64_t lastNs = timeline.startNs;
    for (const TimelineEvent& event : timeline.events) {
        require(event.timeNs >= lastNs && event.timeNs <= timeline.endNs, "events in their order");
        lastNs = event.timeNs;
        if (event.kind == TimelineEvent::Kind::Period) require(event.periodNs > 0, "a period");
        if (event.kind != TimelineEvent::Kind::Depth) continue;
        require(event.depth >= 0, "no queue holds less than nothing");
        require(static_cast<size_t>(event.layer) < timeline.layers.size(), "a depth's layer");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::istringstream trace(std::string(reinterpret_cast<const char*>(data), size));
    TimelineOptions options;
    if (size % 4 == 1) options.layer = "com.example.a/Main";
    try {
        checkTimeline(readTimeline(trace, "trace", options));
    } catch (const InputError& error) {
        require(std::string(error.what()).rfind("trace:", 0) == 0, "an error names the file");
    }
    return 0;
}
