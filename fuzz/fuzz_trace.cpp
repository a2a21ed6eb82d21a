// Traces: any bytes, plain or packed and read in blocks of any size, give an ordered timeline or an
// InputError, and the same text each time.

#include "fuzz/fuzz.h"
#include "tests/gzip.h"
#include "tests/inputs.h"
#include "tests/proto_writer.h"
#include "tests/zip.h"
#include "trace/read_timeline.h"

using namespace brevold;
using namespace brevold::trace;
using brevold::fuzz::require;
using brevold::test::rest;

namespace {

const std::string kName = "input";
const std::string kMember = "b";
constexpr ExpansionLimits kLimits = {1 << 20, 1000, 1 << 16};

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

/** The input itself, or the input in one of the packings. */
std::string packed(const std::string& bytes) {
    switch (bytes.size() % 8) {
        case 2:
            return gzip(bytes);
        case 3:
            return "TRACE:\n" + test::zlib(bytes);
        case 4:
            return zipOf({{"a", bytes}});
        case 5:
            return zipOf({{"a", bytes}, {kMember, gzip(bytes)}});
        case 6:  // longer than the part of a page that its parser sees at once
            return "<html>" + std::string(6000, ' ') + bytes;
        default:
            return bytes;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes = packed({reinterpret_cast<const char*>(data), size});
    const size_t maxRead = size % 3 == 0 ? std::string::npos : size % 64 + 1;
    TimelineOptions options;
    if (size % 4 == 1) options.layer = "com.example.a/Main";
    const std::string member = size % 16 == 5 ? kMember : "";
    try {
        TraceInput input(std::make_unique<StringSource>(bytes, maxRead), kName, member, kLimits);
        const std::string text = rest(input.open());
        require(rest(input.open()) == text, "the second reading gives the same text");
        TraceInput whole(std::make_unique<StringSource>(bytes), kName, member, kLimits);
        require(rest(whole.open()) == text, "blocks of any size give the same text");
        checkTimeline(readTimeline(input, options));
    } catch (const InputError& error) {
        require(std::string(error.what()).rfind(kName + ":", 0) == 0, "an error names the input");
    }
    return 0;
}
