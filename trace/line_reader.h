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
     * false at the end of the text. Throws InputError if the bytes cannot be read, are not text, or
     * have a line of more than 256 KiB.
     */
    bool next(std::string_view* line);

    /** The number of the last line read, counted from 1. */
    int64_t lineNumber() const { return mLineNumber; }
    /** At the end: returns true if there was no byte. */
    bool isEmpty() const { return mBytesRead == 0; }
    /** Returns true if the last line read has no newline. The text may end inside the line. */
    bool isUnfinished() const { return mIsUnfinished; }

  private:
    bool fill();
    bool takeRest(std::string_view* line);

    ByteSource& mText;
    const std::string mPath;
    std::string mBuffer;
    size_t mBegin = 0;
    size_t mEnd = 0;
    int64_t mBytesRead = 0;
    int64_t mLineNumber = 0;
    bool mIsUnfinished = false;
};

}  // namespace brevold::trace
