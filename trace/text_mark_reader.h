#pragma once

#include <string>
#include <string_view>

#include "base/line_count.h"
#include "trace/event_line.h"
#include "trace/line_reader.h"
#include "trace/mark_reader.h"

namespace brevold::trace {

/** Reads the marks of ftrace text. */
class TextMarkReader : public MarkReader {
  public:
    /** `text` has to outlive the reader. Error messages begin with `path`. */
    TextMarkReader(ByteSource& text, std::string path);

    /**
     * Skips lines that are not events, and lines more than 1 ms earlier than a line above. A line
     * that is earlier by less takes the time of the line above. Throws InputError if the text is
     * empty, binary or incomplete, has no events, has mostly lines out of order, or has a counter
     * whose value is not a number.
     */
    bool next(TraceMark* mark) override;

    int64_t startNs() const override { return mStartNs; }
    int64_t endNs() const override { return mEndNs; }
    std::vector<TraceWarning> warnings() const override;
    /** The style is that of the first mark, and of the first end of a section. */
    const TraceForm& form() const override { return mForm; }

  private:
    bool parseMark(std::string_view payload, TraceMark* mark) const;
    void noteThread(const EventLine& line);
    void noteStyle(const EventLine& line, std::string_view event, const TraceMark& mark);
    void checkEnd() const;

    const std::string mPath;
    LineReader mLines;
    int64_t mEvents = 0;
    int64_t mStartNs = 0;
    int64_t mEndNs = 0;
    LineCount mStray;
    LineCount mOutOfOrder;
    bool mIsLastOutOfOrder = false;
    bool mHasStyle = false;
    bool mHasEnd = false;
    TraceForm mForm;
};

}  // namespace brevold::trace
