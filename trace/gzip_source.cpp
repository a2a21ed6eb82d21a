#include "trace/gzip_source.h"

#include <fmt/format.h>
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <new>

#include "base/error.h"

namespace brevold::trace {
namespace {

constexpr size_t kInflatedBytes = 32 * 1024;
constexpr std::string_view kMagic = "\x1f\x8b";
constexpr int kGzipFormat = 16;

const char* nameOf(GzipSource::Format format) {
    return format == GzipSource::Format::Gzip ? "gzip" : "zlib";
}

}  // namespace

bool isGzip(std::string_view head) {
    return head.substr(0, kMagic.size()) == kMagic;
}

void GzipSource::StreamDeleter::operator()(z_stream_s* stream) const {
    inflateEnd(stream);
    delete stream;
}

GzipSource::GzipSource(std::unique_ptr<ByteSource> compressed, std::string name, Format format,
                       ExpansionLimits limits)
      : mCompressed(std::move(compressed)),
        mName(std::move(name)),
        mFormat(format),
        mStream(new z_stream_s()),
        mBlock(kInflatedBytes, '\0'),
        mExpansion(mName, limits) {
    const int windowBits = MAX_WBITS + (format == Format::Gzip ? kGzipFormat : 0);
    if (inflateInit2(mStream.get(), windowBits) != Z_OK) throw std::bad_alloc();
}

size_t GzipSource::read(char* bytes, size_t size) {
    const auto wanted = static_cast<uInt>(
            std::min<size_t>(size, std::numeric_limits<decltype(mStream->avail_out)>::max()));
    mStream->next_out = reinterpret_cast<Bytef*>(bytes);
    mStream->avail_out = wanted;
    while (mStream->avail_out == wanted) {
        if (!mIsInMember && !startMember()) return 0;
        if (mStream->avail_in == 0 && !fill()) {
            throw InputError(
                    fmt::format("{}: expected more {} data, got the end of the file; was "
                                "the file cut short?",
                                mName, nameOf(mFormat)));
        }
        const int result = inflate(mStream.get(), Z_NO_FLUSH);
        if (result == Z_MEM_ERROR) throw std::bad_alloc();
        if (result != Z_OK && result != Z_STREAM_END) {
            throw InputError(fmt::format("{}: the {} data is damaged; copy the file again", mName,
                                         nameOf(mFormat)));
        }
        mIsInMember = result == Z_OK;
    }
    const size_t count = wanted - mStream->avail_out;
    mExpansion.add(count, inputBytes());
    return count;
}

bool GzipSource::fill() {
    mStream->next_in = reinterpret_cast<Bytef*>(mBlock.data());
    mStream->avail_in = static_cast<uInt>(mCompressed->read(mBlock.data(), mBlock.size()));
    return mStream->avail_in > 0;
}

/** Returns false if no member follows; gzip ignores any other bytes as well. */
bool GzipSource::startMember() {
    if (mStream->avail_in == 0 && !fill()) return false;
    mIsInMember = mFormat == Format::Zlib ? !mHasMember
                                          : *mStream->next_in == static_cast<Bytef>(kMagic[0]);
    mHasMember = true;
    if (mIsInMember) inflateReset(mStream.get());
    return mIsInMember;
}

void GzipSource::rewind() {
    mCompressed->rewind();
    mStream->avail_in = 0;
    mIsInMember = false;
    mHasMember = false;
    mExpansion.reset();
}

}  // namespace brevold::trace
