#include "trace/file_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "base/error.h"

namespace brevold::trace {
namespace {

constexpr unsigned kBlockBytes = 32 * 1024;

class Descriptor {
  public:
    explicit Descriptor(int fd) : mFd(fd) {}
    Descriptor(Descriptor&& other) noexcept : mFd(other.release()) {}
    ~Descriptor() {
        if (mFd >= 0) close(mFd);
    }
    int get() const { return mFd; }
    int release() {
        const int fd = mFd;
        mFd = -1;
        return fd;
    }

  private:
    int mFd;
};

[[noreturn]] void failWithErrno(const std::string& name, const char* what) {
    throw InputError(name + ": " + what + ": " + strerror(errno));
}

/** A seekable copy that goes away when it is closed. */
Descriptor spool(int fd, const std::string& name) {
    constexpr const char* kNoCopy = "cannot be copied to a temporary file";
    FILE* const file = tmpfile();
    if (file == nullptr) failWithErrno(name, kNoCopy);
    Descriptor copy(dup(fileno(file)));
    fclose(file);
    std::vector<char> block(kBlockBytes);
    for (ssize_t count; (count = read(fd, block.data(), block.size())) != 0;) {
        if (count < 0) failWithErrno(name, "cannot be read");
        for (ssize_t done = 0; done < count;) {
            const ssize_t written =
                    write(copy.get(), block.data() + done, static_cast<size_t>(count - done));
            if (written < 0) failWithErrno(name, kNoCopy);
            done += written;
        }
    }
    lseek(copy.get(), 0, SEEK_SET);
    return copy;
}

Descriptor openSeekable(const std::string& path, const std::string& name) {
    const bool isStandardInput = path == "-";
    Descriptor file(isStandardInput ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status;
    if (file.get() < 0 || fstat(file.get(), &status) != 0) failWithErrno(name, "cannot be opened");
    if (S_ISDIR(status.st_mode)) {
        throw InputError(name + ": is a directory, expected a file of ftrace text");
    }
    if (S_ISREG(status.st_mode)) return file;
    if (!isStandardInput && !S_ISFIFO(status.st_mode)) {
        throw InputError(name + ": is a device, expected a file of ftrace text");
    }
    return spool(file.get(), name);
}

}  // namespace

FileBytes::FileBytes(const std::string& path, std::string name) : mName(std::move(name)) {
    Descriptor file = openSeekable(path, mName);
    mFile = gzdopen(file.get(), "rb");
    if (mFile == nullptr) throw InputError(mName + ": cannot be opened: no memory");
    struct stat status;
    fstat(file.release(), &status);
    mFileBytes = status.st_size;
    gzbuffer(mFile, kBlockBytes);
}

FileBytes::~FileBytes() {
    gzclose_r(mFile);
}

size_t FileBytes::read(char* bytes, size_t size) {
    errno = 0;
    const int count = gzread(mFile, bytes, static_cast<unsigned>(size));
    if (count > 0) {
        if (mProgress) mProgress->update(gzoffset(mFile));
        return static_cast<size_t>(count);
    }
    mProgress.reset();
    int error = Z_OK;
    gzerror(mFile, &error);
    if (error == Z_ERRNO) failWithErrno(mName, "cannot be read");
    if (error == Z_BUF_ERROR) {
        throw InputError(mName + ": ends inside of its gzip data; was the file cut short?");
    }
    if (count < 0) throw InputError(mName + ": its gzip data is damaged");
    return 0;
}

void FileBytes::rewind() {
    if (gzrewind(mFile) != 0) failWithErrno(mName, "cannot be read a second time");
    mProgress.emplace("reading", mFileBytes);
}

}  // namespace brevold::trace
