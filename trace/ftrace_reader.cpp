#include "trace/ftrace_reader.h"

#include <algorithm>
#include <cstring>

#include "base/error.h"
#include "base/text.h"

namespace brevold::trace {
namespace {

// Far above the 4 KiB that the kernel takes for a mark.
constexpr size_t kLongestLine = 256 * 1024;
// Recorders merge what each processor wrote, and neighbours may come out in the wrong order.
constexpr int64_t kMostDisorderNs = 1'000'000;
constexpr int64_t kLatestSecond = 9'000'000'000;
constexpr int64_t kFractionScaleNs[] = {1'000'000'000, 100'000'000, 10'000'000, 1'000'000, 100'000,
                                        10'000,        1'000,       100,        10,        1};
constexpr std::string_view kMarkEvents[] = {"tracing_mark_write", "print", "0"};
constexpr std::string_view kUnknownTask = "<...>";
constexpr std::string_view kHeader = "# tracer";
constexpr std::string_view kDigits = "0123456789";

/** "TASK-PID" or "TASK-PID (TGID)"; the task may hold anything. */
bool parseThread(std::string_view text, EventLine* line) {
    text = trimEnd(text);
    line->hasProcess = !text.empty() && text.back() == ')';
    if (line->hasProcess) {
        const size_t open = text.rfind('(');
        if (open == std::string_view::npos) return false;
        text = trimEnd(text.substr(0, open));
    }
    const size_t dash = text.rfind('-');
    if (dash == std::string_view::npos) return false;
    line->task = trimStart(text.substr(0, dash));
    return parseWhole(text.substr(dash + 1), &line->tid) && line->tid >= 0;
}

bool parseTime(std::string_view text, EventLine* line) {
    const std::string_view seconds = takeUntil('.', &text);
    uint32_t fraction;
    uint64_t second;
    if (text.size() >= std::size(kFractionScaleNs) || !parseWhole(seconds, &second) ||
        second > kLatestSecond || !parseWhole(text, &fraction)) {
        return false;
    }
    line->decimals = static_cast<int32_t>(text.size());
    line->timeNs = static_cast<int64_t>(second) * kFractionScaleNs[0] +
                   fraction * kFractionScaleNs[text.size()];
    return true;
}

/** What follows the processor: "time: event" or "flags time: event". */
bool parseTimeAndEvent(std::string_view text, EventLine* line) {
    std::string_view time = takeUntil(':', &text);
    time = trimEnd(trimStart(time));
    const size_t blank = time.find_last_of(kBlanks);
    line->hasFlags = blank != std::string_view::npos;
    if (line->hasFlags) {
        const std::string_view flags = trimEnd(time.substr(0, blank));
        if (flags.find_first_of(kBlanks) != std::string_view::npos) return false;
        time.remove_prefix(blank + 1);
    }
    line->event = trimStart(text);
    return parseTime(time, line);
}

bool isBlankOrComment(std::string_view text) {
    return text.empty() || text.front() == '#';
}

std::string quote(std::string_view text) {
    constexpr size_t kLongestQuote = 60;
    std::string quoted(text.substr(0, kLongestQuote));
    std::replace_if(
            quoted.begin(), quoted.end(), [](char c) { return c >= 0 && c < ' '; }, '?');
    return "'" + quoted + (text.size() > kLongestQuote ? "...'" : "'");
}

}  // namespace

bool parseEventLine(std::string_view text, EventLine* line) {
    text = trimEnd(text);
    if (isBlankOrComment(text)) return false;
    // A task's name may hold brackets too, so that the first pair need not be the processor's.
    for (size_t open = text.find('['); open != std::string_view::npos;
         open = text.find('[', open + 1)) {
        const size_t close = text.find_first_not_of(kDigits, open + 1);
        if (close == std::string_view::npos) return false;
        if (text[close] == ']' && close > open + 1 && parseThread(text.substr(0, open), line)) {
            return parseTimeAndEvent(text.substr(close + 1), line);
        }
    }
    return false;
}

bool beginsAsFtrace(std::string_view head) {
    while (!head.empty()) {
        const std::string_view text = takeUntil('\n', &head);
        EventLine line;
        if (text.substr(0, kHeader.size()) == kHeader || parseEventLine(text, &line)) return true;
    }
    return false;
}

LineReader::LineReader(std::istream& input, std::string path)
      : mInput(input), mPath(std::move(path)), mBuffer(kLongestLine) {}

bool LineReader::next(std::string_view* line) {
    size_t searched = 0;
    for (;;) {
        const char* begin = mBuffer.data() + mBegin;
        const void* found = memchr(begin + searched, '\n', mEnd - mBegin - searched);
        if (found) {
            *line = {begin, static_cast<size_t>(static_cast<const char*>(found) - begin)};
            mBegin += line->size() + 1;
            ++mLineNumber;
            return true;
        }
        searched = mEnd - mBegin;
        if (!fill()) return false;
    }
}

bool LineReader::fill() {
    std::copy(mBuffer.data() + mBegin, mBuffer.data() + mEnd, mBuffer.data());
    mEnd -= mBegin;
    mBegin = 0;
    if (mEnd == mBuffer.size()) {
        throw InputError(mPath + ":" + std::to_string(mLineNumber + 1) +
                         ": expected a line of ftrace text, got one of more than " +
                         std::to_string(mBuffer.size()) + " bytes");
    }
    char* added = mBuffer.data() + mEnd;
    mInput.read(added, static_cast<std::streamsize>(mBuffer.size() - mEnd));
    if (mInput.bad()) throw InputError(mPath + ": cannot be read");
    const size_t count = static_cast<size_t>(mInput.gcount());
    if (const void* nul = memchr(added, '\0', count)) {
        throw InputError(mPath + ": is binary, expected ftrace text (it has a NUL byte at " +
                         std::to_string(mBytesRead + (static_cast<const char*>(nul) - added)) +
                         ")");
    }
    mEnd += count;
    mBytesRead += static_cast<int64_t>(count);
    return count > 0;
}

FtraceReader::FtraceReader(std::istream& input, std::string path)
      : mPath(path), mLines(input, std::move(path)) {}

bool FtraceReader::next(TraceMark* mark) {
    std::string_view text;
    while (mLines.next(&text)) {
        EventLine line;
        if (!parseEventLine(text, &line)) {
            if (!isBlankOrComment(trimEnd(text))) mStray.add(mLines.lineNumber());
            continue;
        }
        mIsBackward = mEvents > 0 && line.timeNs < mEndNs - kMostDisorderNs;
        if (mIsBackward) {
            mBackward.add(mLines.lineNumber());
            continue;
        }
        if (mEvents++ == 0) mStartNs = line.timeNs;
        line.timeNs = std::max(line.timeNs, mEndNs);
        mEndNs = line.timeNs;
        noteThread(line);

        const std::string_view event = takeUntil(':', &line.event);
        if (std::find(std::begin(kMarkEvents), std::end(kMarkEvents), event) ==
            std::end(kMarkEvents)) {
            continue;
        }
        *mark = {};
        mark->timeNs = line.timeNs;
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

void FtraceReader::noteThread(const EventLine& line) {
    mStyle.decimals = std::max(mStyle.decimals, line.decimals);
    std::string& name = mThreads[line.tid];
    if (name.empty() && line.task != kUnknownTask) name = line.task;
}

void FtraceReader::noteStyle(const EventLine& line, std::string_view event, const TraceMark& mark) {
    if (mark.kind != TraceMark::Kind::End) {
        mThreads[mark.pid];
    } else if (!mHasEnd) {
        mHasEnd = true;
        mStyle.endHasProcess = line.event.find('|') != std::string_view::npos;
    }
    if (mHasStyle) return;
    mHasStyle = true;
    mStyle.hasProcess = line.hasProcess;
    mStyle.hasFlags = line.hasFlags;
    mStyle.event = event;
}

bool FtraceReader::parseMark(std::string_view payload, TraceMark* mark) const {
    const std::string_view type = takeUntil('|', &payload);
    if (type == "E") {
        mark->kind = TraceMark::Kind::End;
        return true;
    }
    if (type != "B" && type != "C") return false;
    if (!parseWhole(takeUntil('|', &payload), &mark->pid)) return false;
    if (type == "C") return parseCounter(payload, mark);
    mark->kind = TraceMark::Kind::Begin;
    mark->name = payload;
    return true;
}

bool FtraceReader::parseCounter(std::string_view fields, TraceMark* mark) const {
    mark->kind = TraceMark::Kind::Counter;
    const size_t bar = fields.rfind('|');
    mark->name = fields.substr(0, bar);
    const std::string_view value = bar < fields.size() ? fields.substr(bar + 1) : "";
    if (parseWhole(value, &mark->value)) return true;
    // Web views write "name|value|category" as well, which is no counter of the compositor's.
    if (mark->name.find('|') != std::string_view::npos) return false;
    throw InputError(mPath + ":" + std::to_string(mark->line) +
                     ": expected a whole number as value of the counter " + quote(mark->name) +
                     ", got " + quote(value));
}

void FtraceReader::checkEnd() const {
    if (mLines.isEmpty()) throw InputError(mPath + ": is empty, expected ftrace text");
    if (mEvents == 0) throw InputError(mPath + ": holds no trace events, expected ftrace text");
    if (mLines.isCutShort()) {
        throw InputError(mPath + ":" + std::to_string(mLines.lineNumber() + 1) +
                         ": ends in the middle of a line; was the recording cut short?");
    }
    if (mBackward.lines > mEvents) {
        throw InputError(mPath + ":" + std::to_string(mBackward.firstLine) +
                         ": most lines go back in time from here on; is an earlier time wrong?");
    }
}

}  // namespace brevold::trace
