// Traces: whatever a file holds, compressed or not, reading it ends with an orderly timeline or
// with an InputError, and its text comes out twice the same.

#include <zlib.h>

#include <iterator>

#include "base/error.h"
#include "fuzz/fuzz.h"
#include "trace/read_timeline.h"

using namespace brevold;
using namespace brevold::trace;
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
        require(event.depth >= 0 && static_cast<size_t>(event.layer) < timeline.layers.size(),
                "a layer's depth");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const brevold::fuzz::InputFile file;
    file.write(data, size % 4 == 2 ? 0 : size);
    if (size % 4 == 2) {
        // zlib's simplest level, as what it holds is what matters.
        const gzFile gzip = gzdopen(dup(file.fd), "wb1");
        gzwrite(gzip, data, static_cast<unsigned>(size));
        require(gzclose(gzip) == Z_OK, "the input is compressed");
    }
    TimelineOptions options;
    if (size % 4 == 1) options.layer = "com.example.a/Main";
    try {
        TraceInput input(file.path);
        const auto text = [&] {
            return std::string(std::istreambuf_iterator<char>(input.openText()), {});
        };
        require(text() == text(), "the same text twice");
        checkTimeline(readTimeline(input, options));
    } catch (const InputError& error) {
        file.requireNamed(error.what());
    }
    return 0;
}
