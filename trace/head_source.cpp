#include "trace/head_source.h"

namespace brevold::trace {

HeadSource::HeadSource(std::unique_ptr<ByteSource> source, size_t headBytes)
      : mSource(std::move(source)), mHead(headBytes, '\0') {
    size_t size = 0;
    while (size < headBytes) {
        const size_t count = mSource->read(mHead.data() + size, headBytes - size);
        if (count == 0) break;
        size += count;
    }
    mHead.resize(size);
}

size_t HeadSource::read(char* bytes, size_t size) {
    if (mGiven == mHead.size()) {
        mIsPastHead = true;
        return mSource->read(bytes, size);
    }
    const size_t count = mHead.copy(bytes, size, mGiven);
    mGiven += count;
    return count;
}

void HeadSource::rewind() {
    if (!mIsPastHead) {
        mGiven = 0;
        return;
    }
    // The source gives the head again.
    mSource->rewind();
}

}  // namespace brevold::trace
