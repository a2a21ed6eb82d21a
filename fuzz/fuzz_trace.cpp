// Traces: any bytes, plain or packed, give ordered marks and an ordered timeline or an InputError,
// and the same ones each time and in blocks of any size.

#include "fuzz/fuzz.h"
#include "tests/inputs.h"
#include "tests/packed.h"
#include "trace/perfetto_packets.h"
#include "trace/perfetto_reader.h"
#include "trace/read_timeline.h"
#include "trace/text_mark_reader.h"

using namespace brevold;
using namespace brevold::test;
using namespace brevold::trace;
using brevold::fuzz::require;

namespace {

const std::string kName = "input";
const std::string kMember = "b";
constexpr ExpansionLimits kLimits = {1 << 20, 1000, 1 << 16};

/** The marks, the line counts of the warnings, and the number of threads. */
std::string marksOf(MarkReader& reader, bool isPerfetto) {
    std::string text;
    int64_t lastNs = 0;
    int64_t lastLine = 0;
    for (TraceMark mark; reader.next(&mark);) {
        require(mark.timeNs >= lastNs, "the marks are ordered");
        require(!isPerfetto || mark.line == lastLine + 1, "the marks are numbered");
        lastNs = mark.timeNs;
        lastLine = mark.line;
        require(lastNs >= reader.startNs() && lastNs <= reader.endNs(), "in the trace's span");
        text += std::to_string(mark.timeNs) + ' ' + std::to_string(mark.tid) + ' ' +
                std::to_string(mark.pid) + ' ' + std::string(mark.name) + ' ' +
                std::to_string(mark.value) + '\n';
    }
    for (const TraceWarning& warning : reader.warnings()) {
        require(warning.lines.lines > 0, "a warning has a cause");
        text += std::to_string(warning.lines.lines) + '\n';
    }
    return text + std::to_string(reader.form().threads.size());
}

void checkPackets(ByteSource& source, const std::string& bytes) {
    PacketReader reader(source, kName);
    std::string packets;
    for (std::string_view packet; reader.next(&packet);)
        packets += reader.bytes();
    require(bytes.compare(0, packets.size(), packets) == 0, "packets are as in the input");
    require(reader.isCutShort() == (packets.size() < bytes.size()), "all packets are read");
}

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
            return "TRACE:\n" + zlib(bytes);
        case 4:
            return zipOf({{"a", bytes}});
        case 5:
            return zipOf({{"a", bytes}, {kMember, gzip(bytes)}});
        case 6:  // longer than the part of a page that its parser sees at once
            return "<html>" + std::string(6000, ' ') + bytes;
        case 7: {  // longer than two blocks of each reader
            std::string text;
            while (!bytes.empty() && text.size() <= 2 * 64 * 1024)
                text += bytes;
            return text;
        }
        default:
            return bytes;
    }
}

/** The text and the marks of a trace, up to an error. */
std::string read(const std::string& bytes, size_t maxRead, const std::string& member,
                 const TimelineOptions& options) {
    std::string text;
    try {
        TraceInput input(std::make_unique<StringSource>(bytes, maxRead), kName, member, kLimits);
        text = rest(input.open());
        require(rest(input.open()) == text, "the second reading gives the same text");
        const bool isPerfetto = input.kind() == TraceInput::Kind::Perfetto;
        if (isPerfetto) {
            require(text.front() == '\n', "the first tag");
            PerfettoReader reader(input.open(), kName);
            const std::string marks = marksOf(reader, isPerfetto);
            checkPackets(input.open(), text);
            text += marks;
        } else if (input.kind() == TraceInput::Kind::FtraceText) {
            TextMarkReader reader(input.open(), kName);
            text += marksOf(reader, isPerfetto);
        }
        checkTimeline(readTimeline(input, options));
        return text;
    } catch (const InputError& error) {
        require(std::string(error.what()).rfind(kName + ":", 0) == 0, "an error names the input");
        return text + "error";
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes = packed({reinterpret_cast<const char*>(data), size});
    TimelineOptions options;
    if (size % 4 == 1) options.layer = "com.example.a/Main";
    const std::string member = size % 16 == 5 ? kMember : "";
    require(read(bytes, size % 64 + 1, member, options) ==
                    read(bytes, std::string::npos, member, options),
            "blocks of any size make no difference");
    return 0;
}
