#include "trace/page_source.h"

#include <strings.h>

#include <algorithm>
#include <string_view>

#include "base/error.h"
#include "trace/event_line.h"

namespace brevold::trace {
namespace {

/*
 * A page of Android 4.1 to 4.3:
 *     <script>
 *       var linuxPerfData = "\
 *     # tracer: nop\n\
 *          RenderThread-3487  [001] 50260.929925: 0: B|3487|draw \"board\"\n\
 *           SurfaceView-112   [000] 50260.931207: 0: E\n";
 *     </script>
 * A page of later releases:
 *     <script class="trace-data" type="application/text">
 *     # tracer: nop
 *      RenderThread-5120  (5088) [006] .... 8341.220197: tracing_mark_write: B|5088|draw "board"
 *      RenderThread-5120  (5088) [006] .... 8341.223340: tracing_mark_write: E|5088
 *       </script>
 */
constexpr std::string_view kElement = "<script class=\"trace-data\"";
constexpr std::string_view kElementEnd = "</script>";
constexpr std::string_view kString = "linuxPerfData = \"";

constexpr size_t kPageBlockBytes = 64 * 1024;
/** The longest opening tag. */
constexpr size_t kMaxTagBytes = 1024;
/** The beginning of an element or a string that decides if it is a trace. */
constexpr size_t kHeadBytes = 4096;
constexpr size_t kMaxDumpBytes = 4 * 1024 * 1024;
/** The end of an element that may be blanks and the closing tag. */
constexpr size_t kTailBytes = 64;
/** Each step of the parser sees this much of the page, so that it never has to start again. */
constexpr size_t kWindowBytes = kMaxTagBytes + kHeadBytes;
static_assert(kWindowBytes < kPageBlockBytes, "a block is filled up to a whole window");

/** Appends the characters of a string literal up to its quote. Returns the bytes parsed. */
size_t unescape(std::string_view literal, std::string* text) {
    size_t i = 0;
    for (; i < literal.size() && literal[i] != '"'; ++i) {
        if (literal[i] != '\\') {
            *text += literal[i];
            continue;
        }
        if (i + 1 == literal.size()) break;
        const char escaped = literal[++i];
        if (escaped == '\n') continue;
        *text += escaped == 'n' ? '\n' : escaped == 't' ? '\t' : escaped;
    }
    return i;
}

}  // namespace

bool isPage(std::string_view head) {
    head.remove_prefix(std::min(head.find_first_not_of(" \t\r\n"), head.size()));
    const auto startsWith = [head](std::string_view word) {
        return head.size() >= word.size() &&
               strncasecmp(head.data(), word.data(), word.size()) == 0;
    };
    return startsWith("<!doctype") || startsWith("<html");
}

PageSource::PageSource(std::unique_ptr<ByteSource> page, std::string name)
      : mInput(std::move(page)), mName(std::move(name)), mBlock(kPageBlockBytes, '\0') {}

size_t PageSource::read(char* text, size_t size) {
    while (mGiven == mText.size()) {
        mText.clear();
        mGiven = 0;
        if (rest().size() < kWindowBytes && !mIsAtEnd) {
            fill();
        } else if (!rest().empty()) {
            advance();
        } else {
            checkEnd();
            return 0;
        }
    }
    const size_t count = mText.copy(text, size, mGiven);
    mGiven += count;
    return count;
}

void PageSource::rewind() {
    mInput->rewind();
    mBegin = mEnd = mElement = mString = 0;
    mIsAtEnd = false;
    mPlace = Place::Outside;
    mHasTrace = false;
    mText.clear();
    mGiven = 0;
    mDump.clear();
    mLast = '\n';
}

/** Reads at least one byte, unless the page is at its end. */
void PageSource::fill() {
    const size_t kept = rest().size();
    std::copy(mBlock.data() + mBegin, mBlock.data() + mEnd, mBlock.data());
    mBegin = mElement = mString = 0;
    const size_t count = mInput->read(mBlock.data() + kept, mBlock.size() - kept);
    mEnd = kept + count;
    mIsAtEnd = count == 0;
}

/** Parses at least one byte of the page. */
void PageSource::advance() {
    switch (mPlace) {
        case Place::Outside:
            findTrace();
            break;
        case Place::TraceElement:
        case Place::ProcessDump:
        case Place::OtherElement:
            takeElement();
            break;
        case Place::String:
            takeString();
            break;
    }
}

void PageSource::findTrace() {
    const std::string_view block(mBlock.data(), mEnd);
    // A position that was found is used again, because a block may have many of the other kind.
    if (mElement <= mBegin) mElement = std::min(block.find(kElement, mBegin), mEnd);
    if (mString <= mBegin) mString = std::min(block.find(kString, mBegin), mEnd);
    const size_t next = std::min(mElement, mString);
    if (next == mEnd) {
        const size_t kept = mIsAtEnd ? 0 : kElement.size() - 1;
        mBegin = mEnd - kept;
        return;
    }
    mBegin = next;
    if (rest().size() < kWindowBytes && !mIsAtEnd) return;
    if (next == mString) {
        enterString();
    } else {
        enterElement();
    }
}

void PageSource::enterElement() {
    const size_t tagEnd = rest().substr(0, kMaxTagBytes).find('>');
    if (tagEnd == std::string_view::npos) {
        mBegin += kElement.size();
        return;
    }
    mBegin += tagEnd + 1;
    mBegin += std::min(rest().find_first_not_of("\r\n"), rest().size());
    const std::string_view head = rest().substr(0, kHeadBytes);
    const bool isTrace = beginsAsFtrace(head.substr(0, head.find(kElementEnd)));
    mPlace = isTrace               ? Place::TraceElement
             : isProcessDump(head) ? Place::ProcessDump
                                   : Place::OtherElement;
    mHasTrace |= isTrace;
}

/** The viewer's script searches for the string's beginning, so that occurs without a trace too. */
void PageSource::enterString() {
    mBegin += kString.size();
    std::string head;
    unescape(rest().substr(0, kHeadBytes), &head);
    if (!beginsAsFtrace(head)) return;
    mPlace = Place::String;
    mHasTrace = true;
}

void PageSource::takeElement() {
    const size_t end = rest().find(kElementEnd);
    const bool isWhole = end != std::string_view::npos;
    const size_t kept = mIsAtEnd ? 0 : kTailBytes;
    const size_t taken = isWhole ? end : rest().size() - kept;
    if (mPlace == Place::TraceElement) {
        mText = rest().substr(0, taken);
        // A last line of blanks is the indentation of the closing tag.
        if (isWhole) mText.erase(mText.find_last_not_of(" \t") + 1);
        finishText(isWhole);
    } else if (mPlace == Place::ProcessDump) {
        mDump.append(rest().substr(0, std::min(taken, kMaxDumpBytes - mDump.size())));
        if (isWhole) addProcesses(mDump, &mProcesses);
        if (isWhole) mDump.clear();
    }
    mBegin += taken + (isWhole ? kElementEnd.size() : 0);
    if (isWhole) mPlace = Place::Outside;
}

void PageSource::takeString() {
    const size_t length = unescape(rest(), &mText);
    const bool isWhole = length < rest().size() && rest()[length] == '"';
    finishText(isWhole);
    // At the end of the page, a backslash may be left.
    mBegin = isWhole ? mBegin + length + 1 : mIsAtEnd ? mEnd : mBegin + length;
    if (isWhole) mPlace = Place::Outside;
}

/** Ends the last line if the trace is whole. */
void PageSource::finishText(bool isWhole) {
    if (!mText.empty()) mLast = mText.back();
    if (!isWhole || mLast == '\n') return;
    mText += '\n';
    mLast = '\n';
}

void PageSource::checkEnd() const {
    if (mPlace != Place::Outside) {
        throw InputError(mName +
                         ": expected the end of a script element, got the end of the "
                         "page; was the file cut short?");
    }
    if (!mHasTrace) {
        throw InputError(mName +
                         ": expected a page with ftrace text, found none in it; "
                         "was tracing enabled?");
    }
}

}  // namespace brevold::trace
