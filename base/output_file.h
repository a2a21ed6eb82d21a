#pragma once

#include <memory>
#include <string>

#include "base/descriptor_stream.h"
#include "base/partial_file.h"

namespace brevold {

/**
 * A file that is either written whole or left as it was. Until commit() the bytes are in a
 * temporary file next to the target. A symbolic link is followed: its target is replaced. Anything
 * that is not a regular file (a pipe, a device) is written directly, and so is an open descriptor
 * of this process ("/dev/stdout", "/dev/fd/3"). "-" is standard output.
 */
class OutputFile {
  public:
    /** Throws OutputError if the file cannot be created. */
    explicit OutputFile(std::string path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    std::ostream& stream() { return *mStream; }

    /** Completes the file. Throws OutputError if something could not be written. */
    void commit();

  private:
    [[noreturn]] void fail(const char* problem) const;

    const std::string mPath;
    std::string mTarget;  // the file to replace; empty if written directly
    std::unique_ptr<PartialFile> mPartial;
    std::unique_ptr<DescriptorStream> mStream;
};

}  // namespace brevold
