#include "trace/text_mark_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "base/error.h"
#include "base/text.h"
#include "trace/mark_payload.h"
#include "trace/scheduler_events.h"

namespace brevold::trace {
namespace {

constexpr std::string_view kRingHeader = "# entries-in-buffer/entries-written:";
constexpr std::string_view kMarkEvents[] = {"tracing_mark_write", "print", "0"};
constexpr std::string_view kUnknownTask = "<...>";

bool isMarkEvent(std::string_view event) {
    return std::find(std::begin(kMarkEvents), std::end(kMarkEvents), event) !=
           std::end(kMarkEvents);
}

}  // namespace

TextMarkReader::TextMarkReader(ByteSource& text, std::string path, Activity* activity)
      : mPath(path), mActivity(activity), mLines(text, std::move(path)) {}

bool TextMarkReader::next(TraceMark* mark) {
    while (!mSorter.take(mIsAtEnd ? mEndNs : mEndNs - kMaxDisorderNs, mark)) {
        if (mIsAtEnd) return false;
        if (readLine()) continue;
        checkEnd();
        mIsAtEnd = true;
    }
    return true;
}

bool TextMarkReader::readLine() {
    std::string_view text;
    if (!mLines.next(&text)) return false;
    EventLine line;
    if (!parseEventLine(text, &line)) {
        if (!isBlankOrComment(text)) noteSkipped();
        noteHeader(text);
        return true;
    }
    // The text may end inside the time, or inside the name of the event.
    if (mLines.isUnfinished() && line.event.find(':') == std::string_view::npos) {
        noteSkipped();
        return true;
    }
    const int64_t minNs = std::max(mEndNs - kMaxDisorderNs, mSorter.lastTakenNs());
    mIsLastOutOfOrder = mEvents > 0 && line.timeNs < minNs;
    if (mIsLastOutOfOrder) {
        mOutOfOrder.add(mLines.lineNumber());
        return true;
    }
    mStartNs = mEvents++ == 0 ? line.timeNs : std::min(line.timeNs, mStartNs);
    mEndNs = std::max(line.timeNs, mEndNs);
    noteThread(line);
    if (mOverrun.lines > 0 && mProcessors.insert(line.processor).second) mWholeFromNs = mEndNs;

    const std::string_view event = takeUntil(':', &line.event);
    if (!isMarkEvent(event)) {
        if (mActivity != nullptr) addSchedulerEvent(line, event, mActivity);
        return true;
    }
    TraceMark mark = {};
    mark.timeNs = line.timeNs;
    mark.tid = line.tid;
    mark.line = mLines.lineNumber();
    if (parseMark(trimStart(line.event), &mark)) {
        noteStyle(line, event, mark);
        mSorter.add(mark);
    }
    return true;
}

// A buffer of the kernel that was full and lost its oldest events:
//   # entries-in-buffer/entries-written: 30624/87143   #P:4
void TextMarkReader::noteHeader(std::string_view text) {
    if (text.substr(0, kRingHeader.size()) != kRingHeader) return;
    text = trimStart(text.substr(kRingHeader.size()));
    const std::string_view kept = takeUntil('/', &text);
    const std::string_view written = text.substr(0, text.find_first_of(kBlanks));
    int64_t keptCount;
    int64_t writtenCount;
    if (!parseWhole(kept, &keptCount) || !parseWhole(written, &writtenCount)) return;
    if (writtenCount > keptCount && keptCount >= 0) {
        mOverrun = {writtenCount - keptCount, mLines.lineNumber()};
    }
}

void TextMarkReader::noteSkipped() {
    (mLines.isUnfinished() ? mUnfinished : mStray).add(mLines.lineNumber());
}

bool TextMarkReader::parseMark(std::string_view payload, TraceMark* mark) {
    switch (parseMarkPayload(payload, mark)) {
        case MarkPayload::Mark:
            return true;
        case MarkPayload::Other:
            return false;
        case MarkPayload::BadCounterValue:
            if (mLines.isUnfinished()) {
                noteSkipped();
            } else {
                mBadCounters.add(mark->line);
            }
            return false;
    }
    return false;
}

void TextMarkReader::noteThread(const EventLine& line) {
    mForm.style.decimals = std::max(mForm.style.decimals, line.decimals);
    if (mLastThread == nullptr || mLastThread->first != line.tid) {
        mLastThread = &*mForm.threads.try_emplace(line.tid).first;
    }
    std::string& name = mLastThread->second;
    // A process that starts is renamed more than once; viewers show the last name.
    if (line.task != kUnknownTask && line.task != name) name = line.task;
}

void TextMarkReader::noteStyle(const EventLine& line, std::string_view event,
                               const TraceMark& mark) {
    MarkStyle& style = mForm.style;
    if (mark.kind != TraceMark::Kind::End) {
        mForm.threads[mark.pid];
    } else if (!mHasEnd) {
        mHasEnd = true;
        style.endHasProcess = line.event.find('|') != std::string_view::npos;
    }
    if (mHasStyle) return;
    mHasStyle = true;
    style.hasProcess = line.hasProcess;
    style.hasFlags = line.hasFlags;
    style.event = event;
}

std::vector<TraceWarning> TextMarkReader::warnings() const {
    std::vector<TraceWarning> warnings;
    addWarning(TraceWarning::Kind::StrayLine, mStray, &warnings);
    addWarning(TraceWarning::Kind::UnfinishedLine, mUnfinished, &warnings);
    // Recorders close with a mark of time 0.
    const bool isClosingMark = mOutOfOrder.lines == 1 && mIsLastOutOfOrder;
    if (!isClosingMark) addWarning(TraceWarning::Kind::OutOfOrderLine, mOutOfOrder, &warnings);
    addWarning(TraceWarning::Kind::BadCounterValue, mBadCounters, &warnings);
    if (mOverrun.lines > 0) {
        addWarning(TraceWarning::Kind::RingOverrun, mOverrun, &warnings);
        warnings.back().fromNs = mWholeFromNs - mStartNs;
    }
    return warnings;
}

void TextMarkReader::checkEnd() const {
    if (mLines.isEmpty()) {
        throw InputError(mPath + ": expected ftrace text, got no bytes; was anything recorded?");
    }
    if (mEvents == 0) {
        throw InputError(mPath + ": expected ftrace text, got no line with an event");
    }
    if (mOutOfOrder.lines > mEvents) {
        throw InputError(
                fmt::format("{}:{}: expected ascending times, got mostly earlier ones from "
                            "here on; is the time of a line above wrong?",
                            mPath, mOutOfOrder.firstLine));
    }
}

}  // namespace brevold::trace
