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

constexpr size_t kBlockBytes = 32 * 1024;
/** The beginning of an element that decides if it is a trace. */
constexpr size_t kHeadBytes = 4096;
/** The end of an element that may be blanks and the closing tag. */
constexpr size_t kTailBytes = 64;

}  // namespace

bool isPage(const std::string& head) {
    const size_t first = head.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return false;
    const auto startsWith = [&](const char* word, size_t length) {
        return strncasecmp(head.c_str() + first, word, length) == 0;
    };
    return startsWith("<!doctype", 9) || startsWith("<html", 5);
}

PageSource::PageSource(std::unique_ptr<ByteSource> page, std::string name)
      : mInput(std::move(page)), mName(std::move(name)) {}

size_t PageSource::read(char* text, size_t size) {
    while (mGiven == mText.size()) {
        mText.clear();
        mGiven = 0;
        if (advance()) continue;
        if (mIsAtEnd) {
            checkEnd();
            return 0;
        }
        char block[kBlockBytes];
        const size_t count = mInput->read(block, sizeof(block));
        mPage.append(block, count);
        mIsAtEnd = count == 0;
    }
    const size_t count = mText.copy(text, size, mGiven);
    mGiven += count;
    return count;
}

void PageSource::rewind() {
    mInput->rewind();
    mPlace = Place::Outside;
    mHasTrace = false;
    mIsAtEnd = false;
    mPage.clear();
    mText.clear();
    mGiven = 0;
    mLast = '\n';
}

/** Parses a part of the bytes read. Returns false if more of them are needed. */
bool PageSource::advance() {
    switch (mPlace) {
        case Place::Outside:
            return findTrace() || enterElement();
        case Place::TraceElement:
        case Place::OtherElement:
            return takeElement();
        case Place::String:
            return takeString();
    }
    return false;
}

/** Drops the bytes before the next element or string. Returns true at a string. */
bool PageSource::findTrace() {
    const size_t element = mPage.find(kElement);
    const size_t string = mPage.find(kString);
    if (string < element) {
        mPage.erase(0, string + kString.size());
        mPlace = Place::String;
        mHasTrace = true;
        return true;
    }
    const size_t kept = std::min(mPage.size(), kElement.size() - 1);
    mPage.erase(0, std::min(element, mPage.size() - kept));
    return false;
}

bool PageSource::enterElement() {
    if (mPage.compare(0, kElement.size(), kElement) != 0) return false;
    const size_t tagEnd = mPage.find('>');
    if (tagEnd == std::string::npos) return false;
    const size_t end = mPage.find(kElementEnd, tagEnd);
    if (end == std::string::npos && mPage.size() - tagEnd < kHeadBytes && !mIsAtEnd) return false;
    const size_t first = mPage.find_first_not_of("\r\n", tagEnd + 1);
    mPage.erase(0, std::min({first, end, mPage.size()}));
    const std::string_view head = std::string_view(mPage).substr(0, kHeadBytes);
    const bool isTrace = beginsAsFtrace(head.substr(0, head.find(kElementEnd)));
    mPlace = isTrace ? Place::TraceElement : Place::OtherElement;
    mHasTrace |= isTrace;
    return true;
}

bool PageSource::takeElement() {
    const size_t end = mPage.find(kElementEnd);
    const bool isWhole = end != std::string::npos;
    const size_t taken = isWhole ? end : mPage.size() - std::min(mPage.size(), kTailBytes);
    if (mPlace == Place::TraceElement) {
        mText.assign(mPage, 0, taken);
        if (isWhole) finishLines();
    }
    mPage.erase(0, taken + (isWhole ? kElementEnd.size() : 0));
    if (isWhole) mPlace = Place::Outside;
    return isWhole || taken > 0;
}

/** Ends the last line. A last line of blanks is the indentation of the closing tag; drop it. */
void PageSource::finishLines() {
    mText.erase(mText.find_last_not_of(" \t") + 1);
    if (!mText.empty() && mText.back() != '\n') mText += '\n';
}

bool PageSource::takeString() {
    size_t i = 0;
    for (; i < mPage.size() && mPage[i] != '"'; ++i) {
        if (mPage[i] != '\\') {
            mText += mPage[i];
            continue;
        }
        if (i + 1 == mPage.size()) break;
        const char escaped = mPage[++i];
        if (escaped == '\n') continue;
        mText += escaped == 'n' ? '\n' : escaped == 't' ? '\t' : escaped;
    }
    const bool isWhole = i < mPage.size() && mPage[i] == '"';
    if (!mText.empty()) mLast = mText.back();
    if (isWhole) {
        mPlace = Place::Outside;
        if (mLast != '\n') mText += '\n';
    }
    mPage.erase(0, i + (isWhole ? 1 : 0));
    return isWhole || i > 0;
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
