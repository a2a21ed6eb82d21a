// Traces: any bytes, plain or compressed and read in blocks of any size, give an ordered timeline
// or an InputError, and the same text twice.

#include "base/error.h"
#include "fuzz/fuzz.h"
#include "tests/gzip.h"
#include "trace/read_timeline.h"
#include "trace/string_source.h"

using namespace brevold;
using namespace brevold::trace;
using brevold::fuzz::require;

namespace {

const std::string kName = "input";

void checkTimeline(const Timeline& timeline) {
    require(timeline.focusedLayer < timeline.layers.size(), "a layer has the focus");
    require(!timeline.events.empty() && timeline.events[0].kind == TimelineEvent::Kind::Period &&
                    timeline.events[0].timeNs == timeline.startNs,
            "the first event is a period at the start");
    int64_t lastNs = timeline.startNs;
    for (const TimelineEvent& event : timeline.events) {
        require(event.timeNs >= lastNs && event.timeNs <= timeline.endNs, "the events are ordered");
        lastNs = event.timeNs;
        if (event.kind == TimelineEvent::Kind::Period) require(event.periodNs > 0, "a period");
        require(event.depth >= 0 && static_cast<size_t>(event.layer) < timeline.layers.size(),
                "the depth of a layer");
    }
}

std::string textOf(TraceInput& input) {
    ByteSource& source = input.open();
    std::string text;
    char block[4096];
    while (const size_t count = source.read(block, sizeof(block)))
        text.append(block, count);
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    if (size % 4 == 2) bytes = gzip(bytes);
    const size_t maxRead = size % 3 == 0 ? std::string::npos : size % 64 + 1;
    TimelineOptions options;
    if (size % 4 == 1) options.layer = "com.example.a/Main";
    try {
        TraceInput input(std::make_unique<StringSource>(bytes, maxRead), kName);
        const std::string text = textOf(input);
        require(textOf(input) == text, "the second reading gives the same text");
        checkTimeline(readTimeline(input, options));
    } catch (const InputError& error) {
        require(std::string(error.what()).rfind(kName + ":", 0) == 0, "an error names the input");
    }
    return 0;
}
