#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "trace/byte_source.h"
#include "trace/expansion_limit.h"

struct zip;
struct zip_file;

namespace brevold::trace {

/** Returns true if bytes that begin with `head` are a zip archive. */
bool isZip(std::string_view head);

/** The members of a zip archive, numbered from 0. */
class ZipArchive {
  public:
    /**
     * Opens the archive that `bytes` gives from its position on. Copies them to a temporary file
     * unless they are a file. Error messages begin with `name`. Throws InputError.
     */
    ZipArchive(ByteSource& bytes, std::string name, ExpansionLimits limits = {});

    uint64_t size() const;
    /** Ends with a slash for a folder. */
    std::string memberName(uint64_t index) const;
    /** Returns the number of the member with this name. */
    std::optional<uint64_t> find(const std::string& memberName) const;

  private:
    friend class ZipSource;

    struct Closer {
        void operator()(zip* archive) const;
    };

    const std::string mName;
    const ExpansionLimits mLimits;
    uint64_t mFileBytes = 0;
    std::unique_ptr<zip, Closer> mArchive;
};

/** The bytes of a member of a zip archive. */
class ZipSource : public ByteSource {
  public:
    /** Throws InputError. */
    ZipSource(std::shared_ptr<const ZipArchive> archive, uint64_t index);

    /** Throws InputError also if the bytes expand beyond the limits. */
    size_t read(char* bytes, size_t size) override;
    void rewind() override;
    /** The compressed size of the whole member. */
    uint64_t inputBytes() const override { return mCompressedBytes; }

  private:
    struct Closer {
        void operator()(zip_file* file) const;
    };

    [[noreturn]] void fail(const char* reason) const;

    const std::shared_ptr<const ZipArchive> mArchive;
    const uint64_t mIndex;
    uint64_t mCompressedBytes = 0;
    ExpansionLimit mExpansion;
    std::unique_ptr<zip_file, Closer> mFile;
};

}  // namespace brevold::trace
