#include "trace/input_format.h"

#include "base/text.h"
#include "trace/event_line.h"
#include "trace/gzip_source.h"
#include "trace/latency_dump.h"
#include "trace/page_source.h"
#include "trace/perfetto_packets.h"
#include "trace/zip_source.h"

namespace brevold::trace {
namespace {

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

/** RFC 1950: deflate data, and a check of the first two bytes. */
bool beginsAsZlib(std::string_view bytes) {
    if (bytes.size() < 2) return false;
    const auto method = static_cast<uint8_t>(bytes[0]);
    const auto flags = static_cast<uint8_t>(bytes[1]);
    return (method & 0xf) == 8 && (method * 256 + flags) % 31 == 0;
}

}  // namespace

size_t byteOrderMarkBytes(std::string_view head) {
    return head.substr(0, kByteOrderMark.size()) == kByteOrderMark ? kByteOrderMark.size() : 0;
}

// capturing trace... done
// TRACE:
// x\x9c...
size_t compressedAtraceOffset(std::string_view head) {
    for (std::string_view rest = head; !rest.empty();) {
        if (trimEnd(takeUntil('\n', &rest)) != "TRACE:") continue;
        return beginsAsZlib(rest) ? head.size() - rest.size() : 0;
    }
    return 0;
}

InputFormat formatOf(std::string_view head) {
    head.remove_prefix(byteOrderMarkBytes(head));
    if (isGzip(head)) return InputFormat::Gzip;
    if (isZip(head)) return InputFormat::Zip;
    if (compressedAtraceOffset(head) != 0) return InputFormat::CompressedAtrace;
    if (beginsAsPerfetto(head)) return InputFormat::Perfetto;
    if (isPage(head)) return InputFormat::Page;
    if (isLatencyDump(head)) return InputFormat::LatencyDump;
    if (beginsAsFtrace(head)) return InputFormat::FtraceText;
    const bool isBinary = head.find('\0') != std::string_view::npos;
    return isBinary ? InputFormat::OtherBinary : InputFormat::OtherText;
}

}  // namespace brevold::trace
