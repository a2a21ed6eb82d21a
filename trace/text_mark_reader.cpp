#include "trace/text_mark_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "base/error.h"
#include "base/text.h"
#include "trace/mark_payload.h"

namespace brevold::trace {
namespace {

// Recorders merge the events of all processors and may swap neighbours.
constexpr int64_t kMaxDisorderNs = 1'000'000;
constexpr std::string_view kMarkEvents[] = {"tracing_mark_write", "print", "0"};
constexpr std::string_view kUnknownTask = "<...>";

bool isMarkEvent(std::string_view event) {
    return std::find(std::begin(kMarkEvents), std::end(kMarkEvents), event) !=
           std::end(kMarkEvents);
}

}  // namespace

TextMarkReader::TextMarkReader(ByteSource& text, std::string path)
      : mPath(path), mLines(text, std::move(path)) {}

bool TextMarkReader::next(TraceMark* mark) {
    std::string_view text;
    while (mLines.next(&text)) {
        EventLine line;
        if (!parseEventLine(text, &line)) {
            if (!isBlankOrComment(text)) mStray.add(mLines.lineNumber());
            continue;
        }
        mIsLastOutOfOrder = mEvents > 0 && line.timeNs < mEndNs - kMaxDisorderNs;
        if (mIsLastOutOfOrder) {
            mOutOfOrder.add(mLines.lineNumber());
            continue;
        }
        if (mEvents++ == 0) mStartNs = line.timeNs;
        mEndNs = std::max(line.timeNs, mEndNs);
        noteThread(line);

        const std::string_view event = takeUntil(':', &line.event);
        if (!isMarkEvent(event)) continue;
        *mark = {};
        mark->timeNs = mEndNs;
        mark->tid = line.tid;
        mark->line = mLines.lineNumber();
        if (parseMark(trimStart(line.event), mark)) {
            noteStyle(line, event, *mark);
            return true;
        }
    }
    checkEnd();
    return false;
}

bool TextMarkReader::parseMark(std::string_view payload, TraceMark* mark) const {
    switch (parseMarkPayload(payload, mark)) {
        case MarkPayload::Mark:
            return true;
        case MarkPayload::Other:
            return false;
        case MarkPayload::BadCounterValue:
            break;
    }
    throw InputError(fmt::format("{}:{}: expected a counter with a whole number, got {}", mPath,
                                 mark->line, quote(payload)));
}

void TextMarkReader::noteThread(const EventLine& line) {
    mForm.style.decimals = std::max(mForm.style.decimals, line.decimals);
    std::string& name = mForm.threads[line.tid];
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
    // Recorders close with a mark of time 0.
    const bool isClosingMark = mOutOfOrder.lines == 1 && mIsLastOutOfOrder;
    if (!isClosingMark) addWarning(TraceWarning::Kind::OutOfOrderLine, mOutOfOrder, &warnings);
    return warnings;
}

void TextMarkReader::checkEnd() const {
    if (mLines.isEmpty()) {
        throw InputError(mPath + ": expected ftrace text, got no bytes; was anything recorded?");
    }
    if (mEvents == 0) {
        throw InputError(mPath + ": expected ftrace text, got no line with an event");
    }
    mLines.requireWholeLines();
    if (mOutOfOrder.lines > mEvents) {
        throw InputError(
                fmt::format("{}:{}: expected ascending times, got mostly earlier ones from "
                            "here on; is the time of a line above wrong?",
                            mPath, mOutOfOrder.firstLine));
    }
}

}  // namespace brevold::trace
