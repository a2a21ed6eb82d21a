#pragma once

#include <zip.h>
#include <zlib.h>

#include <string>
#include <utility>
#include <vector>

/** Packs the bytes of inputs for tests. */
namespace brevold::test {

/** Returns the bytes compressed in the format that `windowBits` selects in zlib. */
inline std::string deflated(const std::string& bytes, int windowBits) {
    z_stream stream = {};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, windowBits, MAX_MEM_LEVEL,
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

inline std::string zlib(const std::string& bytes) {
    return deflated(bytes, MAX_WBITS);
}

inline std::string gzip(const std::string& bytes) {
    constexpr int kGzipFormat = 16;
    return deflated(bytes, MAX_WBITS + kGzipFormat);
}

/** Returns a zip archive of members with these names and bytes. */
inline std::string zipOf(const std::vector<std::pair<std::string, std::string>>& members) {
    zip_source_t* const buffer = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    zip_source_keep(buffer);
    zip_t* const archive = zip_open_from_source(buffer, ZIP_TRUNCATE, nullptr);
    for (const auto& [name, bytes] : members) {
        zip_source_t* const source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
        zip_file_add(archive, name.c_str(), source, 0);
    }
    zip_close(archive);
    zip_source_open(buffer);
    zip_source_seek(buffer, 0, SEEK_END);
    std::string packed(static_cast<size_t>(zip_source_tell(buffer)), '\0');
    zip_source_seek(buffer, 0, SEEK_SET);
    zip_source_read(buffer, packed.data(), packed.size());
    zip_source_free(buffer);
    return packed;
}

}  // namespace brevold::test
