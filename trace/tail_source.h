#pragma once

#include <algorithm>
#include <memory>

#include "trace/byte_source.h"

namespace brevold::trace {

/** The bytes of another source without the first ones. */
class TailSource : public ByteSource {
  public:
    TailSource(std::unique_ptr<ByteSource> source, size_t skippedBytes)
          : mSource(std::move(source)), mSkippedBytes(skippedBytes), mToSkip(skippedBytes) {}

    size_t read(char* bytes, size_t size) override {
        while (mToSkip > 0) {
            char skipped[256];
            const size_t count = mSource->read(skipped, std::min(mToSkip, sizeof(skipped)));
            if (count == 0) return 0;
            mToSkip -= count;
        }
        return mSource->read(bytes, size);
    }
    void rewind() override {
        mSource->rewind();
        mToSkip = mSkippedBytes;
    }
    uint64_t inputBytes() const override { return mSource->inputBytes(); }

  private:
    const std::unique_ptr<ByteSource> mSource;
    const size_t mSkippedBytes;
    size_t mToSkip;
};

}  // namespace brevold::trace
