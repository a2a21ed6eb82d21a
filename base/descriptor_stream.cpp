#include "base/descriptor_stream.h"

#include <utility>

namespace brevold {

namespace {

constexpr size_t kWriteBufferBytes = 64 * 1024;

}  // namespace

DescriptorStream::DescriptorStream(Descriptor file)
      : std::ostream(static_cast<std::streambuf*>(this)),
        mFile(std::move(file)),
        mBuffer(kWriteBufferBytes) {
    setp(mBuffer.data(), mBuffer.data() + mBuffer.size());
}

bool DescriptorStream::close() {
    flush();
    return good() && mFile.close();
}

std::streambuf::int_type DescriptorStream::overflow(std::streambuf::int_type c) {
    using Traits = std::streambuf::traits_type;
    if (sync() != 0) return Traits::eof();
    if (!Traits::eq_int_type(c, Traits::eof())) sputc(Traits::to_char_type(c));
    return Traits::not_eof(c);
}

int DescriptorStream::sync() {
    const auto count = static_cast<size_t>(pptr() - pbase());
    const bool isWritten = writeAll(mFile.get(), {pbase(), count});
    setp(mBuffer.data(), mBuffer.data() + mBuffer.size());
    return isWritten ? 0 : -1;
}

}  // namespace brevold
