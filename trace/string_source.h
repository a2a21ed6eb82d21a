#pragma once

#include <algorithm>
#include <string>

#include "trace/byte_source.h"

namespace brevold::trace {

/** The bytes of a string. Each read gives at most `maxRead` bytes. */
class StringSource : public ByteSource {
  public:
    explicit StringSource(std::string bytes, size_t maxRead = std::string::npos)
          : mBytes(std::move(bytes)), mMaxRead(maxRead) {}

    size_t read(char* bytes, size_t size) override {
        const size_t count = mBytes.copy(bytes, std::min(size, mMaxRead), mPosition);
        mPosition += count;
        return count;
    }
    void rewind() override { mPosition = 0; }
    uint64_t inputBytes() const override { return mPosition; }

  private:
    const std::string mBytes;
    const size_t mMaxRead;
    size_t mPosition = 0;
};

}  // namespace brevold::trace
