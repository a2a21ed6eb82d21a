#pragma once

#include <fstream>
#include <stdexcept>
#include <string>

namespace brevold {

struct OutputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/**
 * A file that gets its name only when it is whole. Until commit() the bytes stand under a name of
 * their own beside it, which goes away with the object. What is no regular file (a pipe, a device)
 * is written to directly.
 */
class OutputFile {
  public:
    /** Throws OutputError when the file cannot be created. */
    explicit OutputFile(std::string path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    std::ostream& stream() { return mStream; }

    /** Gives the file its name. Throws OutputError when something could not be written. */
    void commit();

  private:
    [[noreturn]] void fail(const char* what) const;

    const std::string mPath;
    const std::string mWrittenPath;
    std::ofstream mStream;
};

}  // namespace brevold
