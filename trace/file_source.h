#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "base/progress.h"

struct gzFile_s;

namespace brevold::trace {

/** The bytes of a file or a pipe, decompressed where they are gzip. */
class FileBytes {
  public:
    /**
     * Standard input for "-". What cannot be read twice is copied to a nameless temporary file.
     * Throws InputError, in which the file goes by the name.
     */
    FileBytes(const std::string& path, std::string name);
    ~FileBytes();
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;

    /** Count of the bytes read, less than the size only before the end. Throws InputError. */
    size_t read(char* bytes, size_t size);
    /** To the first byte; the progress of reading shows from here to the end. */
    void rewind();

  private:
    const std::string mName;
    gzFile_s* mFile;
    int64_t mFileBytes;
    std::optional<Progress> mProgress;
};

}  // namespace brevold::trace
