#pragma once

#include <zip.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace brevold {

/** Returns a zip archive of members with these names and bytes. */
inline std::string zipOf(const std::vector<std::pair<std::string, std::string>>& members) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const buffer = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_source_keep(buffer);
    zip_t* const archive = zip_open_from_source(buffer, ZIP_TRUNCATE, &error);
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
    zip_source_close(buffer);
    zip_source_free(buffer);
    return packed;
}

}  // namespace brevold
