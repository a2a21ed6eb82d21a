#pragma once

#include <zlib.h>

#include <string>

namespace brevold {

/** Returns the bytes as gzip data. */
inline std::string gzip(const std::string& bytes) {
    z_stream stream = {};
    constexpr int kGzipFormat = 16;
    deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, MAX_WBITS + kGzipFormat, MAX_MEM_LEVEL,
                 Z_DEFAULT_STRATEGY);
    std::string compressed(deflateBound(&stream, bytes.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(compressed.data());
    stream.avail_out = static_cast<uInt>(compressed.size());
    deflate(&stream, Z_FINISH);
    compressed.resize(stream.total_out);
    deflateEnd(&stream);
    return compressed;
}

}  // namespace brevold
