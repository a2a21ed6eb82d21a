// Traces: whatever a file holds, reading it ends with an orderly timeline or with an InputError,
// and its text comes out twice the same. Some inputs are compressed first.

#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

#include <iterator>
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

void rewrite(int file, std::string_view bytes) {
    require(ftruncate(file, 0) == 0 && lseek(file, 0, SEEK_SET) == 0 &&
                    pwrite(file, bytes.data(), bytes.size(), 0) ==
                            static_cast<ssize_t>(bytes.size()),
            "the input is written");
}

std::string textOf(TraceInput& input) {
    return {std::istreambuf_iterator<char>(input.openText()), {}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const int file = memfd_create("trace", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    if (size % 4 == 2) {
        rewrite(file, {});
        // zlib's simplest level, as what it holds is what matters.
        const gzFile gzip = gzdopen(dup(file), "wb1");
        gzwrite(gzip, data, static_cast<unsigned>(size));
        require(gzclose(gzip) == Z_OK, "the input is compressed");
    } else {
        rewrite(file, {reinterpret_cast<const char*>(data), size});
    }
    TimelineOptions options;
    if (size % 4 == 1) options.layer = "com.example.a/Main";
    try {
        TraceInput input(path);
        const std::string text = textOf(input);
        require(text == textOf(input), "the same text twice");
        checkTimeline(readTimeline(input, options));
    } catch (const InputError& error) {
        require(std::string(error.what()).rfind(path + ":", 0) == 0, "an error names the file");
    }
    return 0;
}
