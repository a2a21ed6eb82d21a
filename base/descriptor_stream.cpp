#include "base/descriptor_stream.h"

#include <utility>

namespace brevold {

namespace {

constexpr size_t kBufferBytes = 64 * 1024;

}  // namespace

DescriptorStream::DescriptorStream(Descriptor file)
      : std::ostream(static_cast<std::streambuf*>(this)),
        mFile(std::move(file)),
        mBuffer(kBufferBytes) {
    setp(mBuffer.data(), mBuffer.data() + mBuffer.size());
}

DescriptorStream::int_type DescriptorStream::overflow(int_type c) {
    if (sync() != 0) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
}

int DescriptorStream::sync() {
    const auto count = static_cast<size_t>(pptr() - pbase());
    const bool isWritten = writeAll(mFile.get(), {pbase(), count});
    setp(mBuffer.data(), mBuffer.data() + mBuffer.size());
    return isWritten ? 0 : -1;
}

}  // namespace brevold
