// Perfetto traces: any bytes, read in blocks of any size, give the same ordered marks or an
// InputError, and their packets are the beginning of the bytes.

#include "base/error.h"
#include "fuzz/fuzz.h"
#include "trace/perfetto_packets.h"
#include "trace/perfetto_reader.h"
#include "trace/string_source.h"

using namespace brevold;
using namespace brevold::trace;
using brevold::fuzz::require;

namespace {

const std::string kName = "input";

/** All marks and what the reader says of the trace, or the error. */
std::string read(const std::string& bytes, size_t maxRead) {
    StringSource source(bytes, maxRead);
    PerfettoReader reader(source, kName);
    std::string text;
    try {
        int64_t lastNs = 0;
        int64_t lastLine = 0;
        for (TraceMark mark; reader.next(&mark);) {
            require(mark.timeNs >= lastNs && mark.line == lastLine + 1, "the marks are ordered");
            lastNs = mark.timeNs;
            lastLine = mark.line;
            require(lastNs >= reader.startNs() && lastNs <= reader.endNs(), "in the trace's span");
            text += std::to_string(mark.timeNs) + ' ' + std::to_string(mark.tid) + ' ' +
                    std::to_string(mark.pid) + ' ' + std::string(mark.name) + ' ' +
                    std::to_string(mark.value) + '\n';
        }
    } catch (const InputError& error) {
        require(std::string(error.what()).rfind(kName + ":", 0) == 0, "an error names the input");
        return error.what();
    }
    for (const TraceWarning& warning : reader.warnings()) {
        require(warning.lines.lines > 0, "a warning has a cause");
        text += std::to_string(warning.lines.lines) + '\n';
    }
    return text + std::to_string(reader.form().threads.size());
}

std::string packetsOf(const std::string& bytes, size_t maxRead) {
    StringSource source(bytes, maxRead);
    PacketReader reader(source, kName);
    std::string packets;
    try {
        for (std::string_view packet; reader.next(&packet);)
            packets += reader.bytes();
        require(reader.isCutShort() == (packets.size() < bytes.size()), "all packets are read");
    } catch (const InputError&) {
        require(packets.size() < bytes.size(), "an error needs bytes that are no packet");
    }
    return packets;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const size_t maxRead = size % 64 + 1;
    require(read(bytes, maxRead) == read(bytes, std::string::npos), "blocks make no difference");
    const std::string packets = packetsOf(bytes, maxRead);
    require(bytes.compare(0, packets.size(), packets) == 0, "packets are as in the input");
    if (beginsAsPerfetto(bytes)) require(bytes.front() == '\n', "the first tag");
    return 0;
}
