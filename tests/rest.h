#pragma once

#include <string>

#include "trace/byte_source.h"

namespace brevold::trace {

/** Returns the bytes from the source's position to its end. */
inline std::string rest(ByteSource& source) {
    std::string bytes;
    char block[1000];
    while (const size_t count = source.read(block, sizeof(block)))
        bytes.append(block, count);
    return bytes;
}

}  // namespace brevold::trace
