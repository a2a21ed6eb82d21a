#pragma once

#include <fstream>
#include <string>

#include "base/error.h"

namespace brevold {

/**
 * An output file that appears under its path only when it is complete. Until commit() the bytes go
 * to "<path>.part", which the destructor removes. A path that exists and is not a regular file (a
 * pipe, a device) is written directly.
 */
class OutputFile {
  public:
    /** Throws OutputError if the file cannot be created. */
    explicit OutputFile(std::string path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    std::ostream& stream() { return mStream; }

    /** Completes the file. Throws OutputError if any of the bytes could not be written. */
    void commit();

  private:
    [[noreturn]] void fail(const char* what) const;

    const std::string mPath;
    const std::string mWrittenPath;
    std::ofstream mStream;
};

}  // namespace brevold
