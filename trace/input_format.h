#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace brevold::trace {

/** The format of an input's bytes. */
enum class InputFormat : uint8_t {
    Gzip,
    Zip,
    CompressedAtrace,  // the output of "atrace -z"
    Page,              // a web page
    Perfetto,
    LatencyDump,
    FtraceText,
    OtherText,
    OtherBinary,
};

/** How many of the first bytes of an input decide its format. */
constexpr size_t kFormatHeadBytes = 4096;

/** Returns the format of an input that begins with `head`. A byte-order mark is ignored. */
InputFormat formatOf(std::string_view head);

/** Returns the size of the UTF-8 byte-order mark at the beginning of `head`, or 0. */
size_t byteOrderMarkBytes(std::string_view head);

/** Returns the offset of the zlib data in the output of "atrace -z", or 0 in any other input. */
size_t compressedAtraceOffset(std::string_view head);

}  // namespace brevold::trace
