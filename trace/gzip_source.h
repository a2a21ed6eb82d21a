#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "trace/byte_source.h"
#include "trace/expansion_limit.h"

struct z_stream_s;

namespace brevold::trace {

/** Returns true if bytes that begin with `head` are gzip data. */
bool isGzip(std::string_view head);

/** The decompressed bytes of gzip data, or of a zlib stream. */
class GzipSource : public ByteSource {
  public:
    enum class Format : uint8_t { Gzip, Zlib };

    /** Error messages begin with `name`. */
    GzipSource(std::unique_ptr<ByteSource> compressed, std::string name,
               Format format = Format::Gzip, ExpansionLimits limits = {});

    /**
     * Throws InputError also if the data is incomplete or expands beyond the limits. Bytes after
     * the data are ignored.
     */
    size_t read(char* bytes, size_t size) override;
    void rewind() override;
    uint64_t inputBytes() const override { return mCompressed->inputBytes(); }

  private:
    struct StreamDeleter {
        void operator()(z_stream_s* stream) const;
    };

    bool fill();
    bool startMember();

    const std::unique_ptr<ByteSource> mCompressed;
    const std::string mName;
    const Format mFormat;
    const std::unique_ptr<z_stream_s, StreamDeleter> mStream;
    std::string mBlock;        // compressed bytes
    bool mIsInMember = false;  // gzip data is a sequence of members; a zlib stream is one
    bool mHasMember = false;
    ExpansionLimit mExpansion;
};

}  // namespace brevold::trace
