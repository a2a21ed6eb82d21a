#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/descriptor.h"
#include "base/progress.h"
#include "trace/byte_source.h"

namespace brevold::trace {

/** How often an input is read. */
enum class Reading : uint8_t { Once, Repeated };

/** The bytes of a file, a pipe or standard input. Shows the progress of reading a file. */
class FileSource : public ByteSource {
  public:
    /**
     * Opens `path`; "-" is standard input. Error messages begin with `name`. For Reading::Repeated,
     * copies a pipe to a temporary file. Throws InputError.
     */
    FileSource(const std::string& path, std::string name, Reading reading);

    size_t read(char* bytes, size_t size) override;
    /** Throws InputError for a pipe that was opened with Reading::Once. */
    void rewind() override;
    uint64_t inputBytes() const override { return mBytesRead; }
    const Descriptor* file() const override;

  private:
    const std::string mName;
    Descriptor mFile;
    int64_t mFirstByte;  // offset of the first byte, or -1 for a pipe
    int64_t mFileBytes;
    uint64_t mBytesRead = 0;
    std::optional<Progress> mProgress;
};

}  // namespace brevold::trace
