#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "trace/byte_source.h"

namespace brevold::trace {

/**
 * Returns true if `head`, the first bytes of an input, begins a Perfetto trace. A text that begins
 * with a newline has the same first byte, so the fields of the packets are checked too.
 */
bool beginsAsPerfetto(std::string_view head);

/** Splits a Perfetto trace into its packets. */
class PacketReader {
  public:
    /** `source` has to outlive the reader. Error messages begin with `path`. */
    PacketReader(ByteSource& source, std::string path);

    /**
     * Reads the next packet, which is valid until the next call. Returns false after the last whole
     * packet. Throws InputError if the input cannot be read or is not a sequence of packets.
     */
    bool next(std::string_view* packet);

    /** The bytes of the packet that next() returned, with its tag and length. */
    std::string_view bytes() const { return mBytes; }

    /** Call it after the last packet. Returns true if the input ends inside a packet. */
    bool isCutShort() const { return mBegin != mEnd; }

  private:
    bool fill();

    ByteSource& mSource;
    const std::string mPath;
    std::string mBuffer;
    size_t mBegin = 0;
    size_t mEnd = 0;
    int64_t mBytesTaken = 0;
    std::string_view mBytes;
};

}  // namespace brevold::trace
