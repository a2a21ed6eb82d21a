#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/line_count.h"
#include "trace/trace_form.h"
#include "trace/trace_mark.h"

namespace brevold::trace {

/** The parts of a line that tells of an event. */
struct EventLine {
    int64_t timeNs;
    int32_t decimals;  // of the time as written
    std::string_view task;
    int32_t tid;
    bool hasProcess;
    bool hasFlags;
    std::string_view event;  // "name: payload"
};

/** False for a line that tells of no event, as blank lines and comments. */
bool parseEventLine(std::string_view text, EventLine* line);

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
    /**
     * Lines that were left out: no event, or more than 1 ms earlier than a line above. A smaller
     * step back is only disorder; such a line takes the other's time.
     */
    int64_t strayLines() const { return mStray.lines; }
    int64_t backwardLines() const { return mBackward.lines; }
    /** The same with their first lines. */
    const LineCount& stray() const { return mStray; }
    const LineCount& backward() const { return mBackward; }
    /** Whether the last event is a backward one, as the mark that recorders close with. */
    bool endsBackward() const { return mIsBackward; }
    /** Taken from the first mark and the first end of a section. */
    const MarkStyle& style() const { return mStyle; }
    /** The threads and processes that events tell of, with the threads' names where known. */
    const std::unordered_map<int32_t, std::string>& threads() const { return mThreads; }

  private:
    void noteThread(const EventLine& line);
    void noteStyle(const EventLine& line, std::string_view event, const TraceMark& mark);
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
    bool mHasStyle = false;
    bool mHasEnd = false;
    MarkStyle mStyle;
    std::unordered_map<int32_t, std::string> mThreads;
};

}  // namespace brevold::trace
