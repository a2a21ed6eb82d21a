#include "trace/page_source.h"

#include <strings.h>

#include <algorithm>
#include <string_view>

#include "base/error.h"
#include "trace/ftrace_reader.h"

namespace brevold::trace {
namespace {

constexpr size_t kBlockBytes = 32 * 1024;
/** So much of an element tells whether it is a trace. */
constexpr size_t kHeadBytes = 4096;
/** What of an element may belong to its end: blanks, and the closing tag. */
constexpr size_t kTailBytes = 64;
constexpr std::string_view kElement = "<script class=\"trace-data\"";
constexpr std::string_view kElementEnd = "</script>";
constexpr std::string_view kString = "linuxPerfData = \"";

}  // namespace

bool isPage(const std::string& head) {
    const size_t begin = head.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos) return false;
    const auto startsWith = [&](const char* word, size_t length) {
        return strncasecmp(head.c_str() + begin, word, length) == 0;
    };
    return startsWith("<!doctype", 9) || startsWith("<html", 5);
}

PageText::PageText(FileBytes& bytes, std::string name) : mBytes(bytes), mName(std::move(name)) {}

size_t PageText::read(char* text, size_t size) {
    while (mGiven == mText.size()) {
        mText.clear();
        mGiven = 0;
        if (advance()) continue;
        if (mIsAtEnd) {
            checkEnd();
            return 0;
        }
        const size_t held = mPage.size();
        mPage.resize(held + kBlockBytes);
        const size_t count = mBytes.read(mPage.data() + held, kBlockBytes);
        mPage.resize(held + count);
        mIsAtEnd = count == 0;
    }
    const size_t count = std::min(size, mText.size() - mGiven);
    mText.copy(text, count, mGiven);
    mGiven += count;
    return count;
}

/** Whether it got on with what stands in mPage; else that has to grow. */
bool PageText::advance() {
    switch (mPlace) {
        case Place::Outside:
            return findTrace() || enterElement();
        case Place::Element:
        case Place::OtherElement:
            return takeElement();
        case Place::String:
            return takeString();
    }
    return false;
}

/** Drops what comes before the next trace; true for a string. */
bool PageText::findTrace() {
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

bool PageText::enterElement() {
    const size_t tagEnd =
            mPage.compare(0, kElement.size(), kElement) == 0 ? mPage.find('>') : std::string::npos;
    if (tagEnd == std::string::npos) return false;
    const size_t end = mPage.find(kElementEnd, tagEnd);
    if (end == std::string::npos && mPage.size() - tagEnd < kHeadBytes && !mIsAtEnd) return false;
    const size_t first = mPage.find_first_not_of("\r\n", tagEnd + 1);
    mPage.erase(0, std::min({first, end, mPage.size()}));
    const std::string_view head = std::string_view(mPage).substr(0, kHeadBytes);
    const bool isTrace = beginsAsFtrace(head.substr(0, head.find(kElementEnd)));
    mPlace = isTrace ? Place::Element : Place::OtherElement;
    mHasTrace |= isTrace;
    return true;
}

bool PageText::takeElement() {
    const size_t end = mPage.find(kElementEnd);
    const bool isWhole = end != std::string::npos;
    const size_t taken = isWhole ? end : mPage.size() - std::min(mPage.size(), kTailBytes);
    if (mPlace == Place::Element) {
        mText.assign(mPage, 0, taken);
        if (isWhole) finishLines();
    }
    mPage.erase(0, taken + (isWhole ? kElementEnd.size() : 0));
    if (isWhole) mPlace = Place::Outside;
    return isWhole || taken > 0;
}

/** Ends the last line; one of blanks is the indentation of the closing tag. */
void PageText::finishLines() {
    mText.erase(mText.find_last_not_of(" \t") + 1);
    if (!mText.empty() && mText.back() != '\n') mText += '\n';
}

bool PageText::takeString() {
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

void PageText::checkEnd() const {
    if (mPlace != Place::Outside) {
        throw InputError(mName + ": ends inside of a script element; was the file cut short?");
    }
    if (!mHasTrace) throw InputError(mName + ": is a web page without an ftrace text in it");
}

}  // namespace brevold::trace
