#include "base/descriptor.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace brevold {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    if (this != &other) {
        reset();
        mFd = other.release();
    }
    return *this;
}

int Descriptor::release() {
    const int fd = mFd;
    mFd = -1;
    return fd;
}

bool Descriptor::close() {
    return mFd < 0 || ::close(release()) == 0;
}

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(fd, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        bytes.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

bool readAll(int fd, std::string* bytes) {
    char block[65536];
    while (true) {
        const ssize_t count = read(fd, block, sizeof(block));
        if (count == 0) return true;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        bytes->append(block, static_cast<size_t>(count));
    }
}

std::string errnoText(int error) {
    return std::generic_category().message(error);
}

}  // namespace brevold
