#pragma once

#include <memory>
#include <string>

#include "trace/byte_source.h"

namespace brevold::trace {

/** The bytes of another source. The first ones can be examined before any are read. */
class HeadSource : public ByteSource {
  public:
    /** Reads up to `headBytes` bytes of `source`. Throws InputError. */
    HeadSource(std::unique_ptr<ByteSource> source, size_t headBytes);

    /** The first bytes: `headBytes` of them, or all if there are fewer. */
    const std::string& head() const { return mHead; }

    size_t read(char* bytes, size_t size) override;
    /** Rewinds the other source only if bytes after the head have been read. */
    void rewind() override;
    uint64_t inputBytes() const override { return mSource->inputBytes(); }
    const Descriptor* file() const override { return mSource->file(); }

  private:
    const std::unique_ptr<ByteSource> mSource;
    std::string mHead;
    size_t mGiven = 0;  // bytes of the head that read() has given
    bool mIsPastHead = false;
};

}  // namespace brevold::trace
