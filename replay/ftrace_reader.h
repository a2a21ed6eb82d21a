#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include "replay/line_count.h"

namespace brevold::replay {

/** Whether a text of which this is the begin holds the header of an ftrace, or an event. */
bool beginsAsFtrace(std::string_view head);

/** Splits a text into lines. */
class LineReader {
  public:
    /** Messages call the input by its path. */
    LineReader(std::istream& input, std::string path);

    /**
     * The next line without its end, valid until the next call; false behind the last whole line.
     * Throws InputError where the input cannot be read or is no text.
     */
    bool next(std::string_view* line);

    /** Number of the line that next() gave, from 1. */
    int64_t lineNumber() const { return mLineNumber; }
    /** At the end: the input had no byte at all. */
    bool isEmpty() const { return mBytesRead == 0; }
    /** At the end: the last line has no newline. */
    bool isCutShort() const { return mBegin != mEnd; }

  private:
    bool fill();

    std::istream& mInput;
    const std::string mPath;
    std::vector<char> mBuffer;
    size_t mBegin = 0;
    size_t mEnd = 0;
    int64_t mBytesRead = 0;
    int64_t mLineNumber = 0;
};

/** A mark that a process wrote into the trace: "B|pid|name", "E|pid" or "C|pid|name|value". */
struct TraceMark {
    enum class Kind : uint8_t { Begin, End, Counter };

    Kind kind;
    int64_t timeNs;
    int32_t tid;            // the thread that wrote it
    int32_t pid;            // the process named in it; 0 for an End
    std::string_view name;  // Begin, Counter; valid until the next call of the reader
    int64_t value;          // Counter
    int64_t line;
};

/**
 * Reads the marks of an ftrace text: with or without the columns for the process and the flags,
 * marks as "0:", "tracing_mark_write:" or "print:" events, times with one to nine decimals.
 */
class FtraceReader {
  public:
    FtraceReader(std::istream& input, std::string path);

    /**
     * The next mark; false at the end of the trace. Throws InputError for an input that is empty,
     * no text, without any event or cut short, for a counter whose value is no whole number, and
     * when most events go back in time.
     */
    bool next(TraceMark* mark);

    /** Times of the first and the last event so far, whatever its kind. */
    int64_t startNs() const { return mStartNs; }
    int64_t endNs() const { return mEndNs; }
    /** Lines that were left out: no event, or its time before that of an earlier line. */
    int64_t strayLines() const { return mStray.lines; }
    int64_t backwardLines() const { return mBackward.lines; }
    /** The same with their first lines. */
    const LineCount& stray() const { return mStray; }
    const LineCount& backward() const { return mBackward; }
    /** Whether the last event is a backward one, as the mark that recorders close with. */
    bool endsBackward() const { return mIsBackward; }

  private:
    bool parseMark(std::string_view payload, TraceMark* mark) const;
    bool parseCounter(std::string_view fields, TraceMark* mark) const;
    void checkEnd() const;

    const std::string mPath;
    LineReader mLines;
    int64_t mEvents = 0;
    int64_t mStartNs = 0;
    int64_t mEndNs = 0;
    LineCount mStray;
    LineCount mBackward;
    bool mIsBackward = false;
};

}  // namespace brevold::replay
