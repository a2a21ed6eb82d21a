#include "base/descriptor_input.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace brevold {

namespace {

constexpr size_t kReadBufferBytes = 64 * 1024;

}  // namespace

DescriptorInput::DescriptorInput(Descriptor file)
      : std::istream(static_cast<std::streambuf*>(this)),
        mFile(std::move(file)),
        mBuffer(kReadBufferBytes) {}

std::streambuf::int_type DescriptorInput::underflow() {
    ssize_t count = 0;
    do {
        count = ::read(mFile.get(), mBuffer.data(), mBuffer.size());
    } while (count < 0 && errno == EINTR);
    if (count <= 0) return std::streambuf::traits_type::eof();
    setg(mBuffer.data(), mBuffer.data(), mBuffer.data() + count);
    return std::streambuf::traits_type::to_int_type(mBuffer.front());
}

}  // namespace brevold
