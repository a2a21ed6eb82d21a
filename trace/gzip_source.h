#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "trace/byte_source.h"

struct z_stream_s;

namespace brevold::trace {

/** Returns true if bytes that begin with `head` are gzip data. */
bool isGzip(std::string_view head);

/** The decompressed bytes of gzip data. */
class GzipSource : public ByteSource {
  public:
    /** Error messages begin with `name`. */
    GzipSource(std::unique_ptr<ByteSource> compressed, std::string name);

    /** Throws InputError also if the data is incomplete. Bytes after the gzip data are ignored. */
    size_t read(char* bytes, size_t size) override;
    void rewind() override;

  private:
    struct StreamDeleter {
        void operator()(z_stream_s* stream) const;
    };

    bool fill();
    bool startMember();

    const std::unique_ptr<ByteSource> mCompressed;
    const std::string mName;
    const std::unique_ptr<z_stream_s, StreamDeleter> mStream;
    std::string mBlock;        // compressed bytes
    bool mIsInMember = false;  // gzip data is a sequence of members
};

}  // namespace brevold::trace
