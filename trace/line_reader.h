#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "trace/byte_source.h"

namespace brevold::trace {

/** Splits text into lines. */
class LineReader {
  public:
    /** `text` has to outlive the reader. Error messages begin with `path`. */
    LineReader(ByteSource& text, std::string path);

    /**
     * Reads the next line, without its newline. The line is valid until the next call. Returns
     * false after the last newline. Throws InputError if the bytes cannot be read, are not text, or
     * have a line of more than 256 KiB.
     */
    bool next(std::string_view* line);

    /** The number of the last line read, counted from 1. */
    int64_t lineNumber() const { return mLineNumber; }
    /** At the end: returns true if there was no byte. */
    bool isEmpty() const { return mBytesRead == 0; }
    /** At the end: throws InputError if bytes follow the last newline. */
    void requireWholeLines() const;

  private:
    bool fill();

    ByteSource& mText;
    const std::string mPath;
    std::string mBuffer;
    size_t mBegin = 0;
    size_t mEnd = 0;
    int64_t mBytesRead = 0;
    int64_t mLineNumber = 0;
};

}  // namespace brevold::trace
