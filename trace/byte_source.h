#pragma once

#include <cstddef>

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
};

}  // namespace brevold::trace
