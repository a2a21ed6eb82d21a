#include "trace/line_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "base/error.h"

namespace brevold::trace {
namespace {

// The kernel limits a mark to 4 KiB; other events are far shorter than this as well.
constexpr size_t kMaxLineBytes = 256 * 1024;

}  // namespace

LineReader::LineReader(ByteSource& text, std::string path)
      : mText(text), mPath(std::move(path)), mBuffer(kMaxLineBytes, '\0') {}

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
        if (!fill()) return takeRest(line);
    }
}

bool LineReader::takeRest(std::string_view* line) {
    if (mBegin == mEnd) return false;
    *line = {mBuffer.data() + mBegin, mEnd - mBegin};
    mBegin = mEnd;
    ++mLineNumber;
    mIsUnfinished = true;
    return true;
}

bool LineReader::fill() {
    std::copy(mBuffer.data() + mBegin, mBuffer.data() + mEnd, mBuffer.data());
    mEnd -= mBegin;
    mBegin = 0;
    if (mEnd == mBuffer.size()) {
        throw InputError(fmt::format("{}:{}: expected a line of at most {} bytes, got a longer one",
                                     mPath, mLineNumber + 1, mBuffer.size()));
    }
    char* added = mBuffer.data() + mEnd;
    const size_t count = mText.read(added, mBuffer.size() - mEnd);
    if (const void* zero = memchr(added, '\0', count)) {
        throw InputError(
                fmt::format("{}: expected text, got binary data at byte {}; copy the file again",
                            mPath, mBytesRead + (static_cast<const char*>(zero) - added)));
    }
    mEnd += count;
    mBytesRead += static_cast<int64_t>(count);
    return count > 0;
}

}  // namespace brevold::trace
