#pragma once

#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "base/line_count.h"
#include "trace/activity.h"
#include "trace/event_line.h"
#include "trace/line_reader.h"
#include "trace/mark_reader.h"
#include "trace/mark_sorter.h"

namespace brevold::trace {

/** Reads the marks of ftrace text. */
class TextMarkReader : public MarkReader {
  public:
    /**
     * `text` has to outlive the reader. Error messages begin with `path`. Unless `activity` is
     * null, the events of the scheduler are added to it.
     */
    TextMarkReader(ByteSource& text, std::string path, Activity* activity = nullptr);

    /**
     * Skips lines that are not events, an incomplete last line, lines more than kMaxDisorderNs
     * earlier than a line above, and counters whose value is not a number. Throws InputError if the
     * text is empty or binary, has no events, or has mostly lines out of order.
     */
    bool next(TraceMark* mark) override;

    int64_t startNs() const override { return mStartNs; }
    int64_t endNs() const override { return mEndNs; }
    std::vector<TraceWarning> warnings() const override;
    /** The style is that of the first mark, and of the first end of a section. */
    const TraceForm& form() const override { return mForm; }

  private:
    bool readLine();
    void noteHeader(std::string_view text);
    void noteSkipped();
    bool parseMark(std::string_view payload, TraceMark* mark);
    void noteThread(const EventLine& line);
    void noteStyle(const EventLine& line, std::string_view event, const TraceMark& mark);
    void checkEnd() const;

    const std::string mPath;
    Activity* const mActivity;
    LineReader mLines;
    int64_t mEvents = 0;
    int64_t mStartNs = 0;
    int64_t mEndNs = 0;
    LineCount mStray;
    LineCount mUnfinished;
    LineCount mOutOfOrder;
    LineCount mBadCounters;
    LineCount mOverrun;             // events lost, and the line of the header
    std::set<int32_t> mProcessors;  // with events
    int64_t mWholeFromNs = 0;       // all processors have events from here on
    MarkSorter mSorter;
    bool mIsAtEnd = false;
    bool mIsLastOutOfOrder = false;
    bool mHasStyle = false;
    bool mHasEnd = false;
    TraceForm mForm;
    std::pair<const int32_t, std::string>* mLastThread = nullptr;  // in mForm
};

}  // namespace brevold::trace
