#pragma once

#include <cstddef>
#include <cstdint>

#include "base/descriptor.h"

namespace brevold::trace {

/** A sequence of bytes that can be read more than once. One thread. */
class ByteSource {
  public:
    virtual ~ByteSource() = default;

    /**
     * Reads at least one and at most `size` bytes into `bytes`, and returns their count. Returns 0
     * at the end. Throws InputError if the bytes cannot be read or are damaged.
     */
    virtual size_t read(char* bytes, size_t size) = 0;

    /** Continues at the first byte. Throws InputError. */
    virtual void rewind() = 0;

    /** How many bytes of the input were read so far, counted before any decompression. */
    virtual uint64_t inputBytes() const = 0;

    /** The regular file that consists of these bytes, or null. Its offset may be anywhere. */
    virtual const Descriptor* file() const { return nullptr; }
};

}  // namespace brevold::trace
