#include "trace/file_source.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/error.h"
#include "trace/temporary_copy.h"

namespace brevold::trace {
namespace {

[[noreturn]] void failWithErrno(const std::string& name, const char* what) {
    throw InputError(fmt::format("{}: {}: {}", name, what, errnoText(errno)));
}

Descriptor openInput(const std::string& path, const std::string& name) {
    const bool isStandardInput = path == "-";
    Descriptor file(isStandardInput ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                    : open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status;
    if (!file.isOpen() || fstat(file.get(), &status) != 0) failWithErrno(name, "cannot be opened");
    const bool isFile = S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode);
    if (!isFile && (!isStandardInput || S_ISDIR(status.st_mode))) {
        throw InputError(fmt::format("{}: expected a trace file, got a {}", name,
                                     S_ISDIR(status.st_mode) ? "directory" : "device"));
    }
    return file;
}

size_t readSome(const Descriptor& file, const std::string& name, char* bytes, size_t size) {
    ssize_t count;
    do {
        count = read(file.get(), bytes, size);
    } while (count < 0 && errno == EINTR);
    if (count < 0) failWithErrno(name, "cannot be read");
    return static_cast<size_t>(count);
}

/** The current offset of a regular file; -1 for anything else. */
int64_t offsetOf(const Descriptor& file) {
    struct stat status;
    const bool isRegular = fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    return isRegular ? lseek(file.get(), 0, SEEK_CUR) : -1;
}

}  // namespace

FileSource::FileSource(const std::string& path, std::string name, Reading reading)
      : mName(std::move(name)), mFile(openInput(path, mName)), mFirstByte(offsetOf(mFile)) {
    if (mFirstByte < 0 && reading == Reading::Repeated) {
        mFile = copyToTemporaryFile(*this, mName);
        mFirstByte = 0;
        mBytesRead = 0;
    }
    struct stat status;
    mFileBytes = fstat(mFile.get(), &status) == 0 ? status.st_size - mFirstByte : 0;
}

size_t FileSource::read(char* bytes, size_t size) {
    if (mFirstByte >= 0 && mBytesRead == 0) mProgress.emplace("reading", mFileBytes);
    const size_t count = readSome(mFile, mName, bytes, size);
    mBytesRead += count;
    if (count == 0) {
        mProgress.reset();
    } else if (mProgress) {
        mProgress->update(static_cast<int64_t>(mBytesRead));
    }
    return count;
}

void FileSource::rewind() {
    if (mFirstByte < 0) throw InputError(mName + ": a pipe cannot be read twice");
    if (lseek(mFile.get(), mFirstByte, SEEK_SET) < 0) {
        failWithErrno(mName, "cannot be read again");
    }
    mBytesRead = 0;
}

const Descriptor* FileSource::file() const {
    return mFirstByte == 0 ? &mFile : nullptr;
}

}  // namespace brevold::trace
