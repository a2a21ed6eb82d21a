#include "trace/zip_source.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <zip.h>

#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "trace/temporary_copy.h"

namespace brevold::trace {
namespace {

constexpr std::string_view kMember = "PK\x03\x04";
constexpr std::string_view kEmptyArchive = "PK\x05\x06";

}  // namespace

bool isZip(std::string_view head) {
    const std::string_view magic = head.substr(0, kMember.size());
    return magic == kMember || magic == kEmptyArchive;
}

void ZipArchive::Closer::operator()(zip* archive) const {
    zip_discard(archive);
}

ZipArchive::ZipArchive(ByteSource& bytes, std::string name, ExpansionLimits limits)
      : mName(std::move(name)), mLimits(limits) {
    Descriptor file(bytes.file() ? fcntl(bytes.file()->get(), F_DUPFD_CLOEXEC, 0) : -1);
    if (!file.isOpen()) file = copyToTemporaryFile(bytes, mName);
    struct stat status;
    if (fstat(file.get(), &status) == 0) mFileBytes = static_cast<uint64_t>(status.st_size);
    int error = 0;
    mArchive.reset(zip_fdopen(file.get(), 0, &error));
    if (!mArchive) {
        throw InputError(mName + ": the zip archive is damaged or incomplete; copy the file again");
    }
    // libzip has closed it.
    file.release();
}

uint64_t ZipArchive::size() const {
    return static_cast<uint64_t>(zip_get_num_entries(mArchive.get(), 0));
}

std::string ZipArchive::memberName(uint64_t index) const {
    const char* const name = zip_get_name(mArchive.get(), index, 0);
    return name ? name : "";
}

std::optional<uint64_t> ZipArchive::find(const std::string& memberName) const {
    const zip_int64_t index = zip_name_locate(mArchive.get(), memberName.c_str(), 0);
    if (index < 0) return std::nullopt;
    return static_cast<uint64_t>(index);
}

void ZipSource::Closer::operator()(zip_file* file) const {
    zip_fclose(file);
}

ZipSource::ZipSource(std::shared_ptr<const ZipArchive> archive, uint64_t index)
      : mArchive(std::move(archive)),
        mIndex(index),
        mExpansion(mArchive->mName, mArchive->mLimits) {
    zip_stat_t status;
    if (zip_stat_index(mArchive->mArchive.get(), mIndex, 0, &status) == 0 &&
        (status.valid & ZIP_STAT_COMP_SIZE) != 0) {
        // The archive may state any size.
        mCompressedBytes = std::min<uint64_t>(status.comp_size, mArchive->mFileBytes);
    }
    rewind();
}

size_t ZipSource::read(char* bytes, size_t size) {
    const zip_int64_t count = zip_fread(mFile.get(), bytes, size);
    if (count < 0) fail(zip_file_strerror(mFile.get()));
    mExpansion.add(static_cast<size_t>(count), mCompressedBytes);
    return static_cast<size_t>(count);
}

void ZipSource::rewind() {
    mFile.reset(zip_fopen_index(mArchive->mArchive.get(), mIndex, 0));
    if (!mFile) fail(zip_strerror(mArchive->mArchive.get()));
    mExpansion.reset();
}

void ZipSource::fail(const char* reason) const {
    throw InputError(fmt::format("{}: the member {} of the zip archive cannot be read: {}",
                                 mArchive->mName, quote(mArchive->memberName(mIndex)), reason));
}

}  // namespace brevold::trace
