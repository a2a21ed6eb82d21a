#pragma once

#include <string>
#include <string_view>

namespace brevold {

/** Owns a file descriptor. */
class Descriptor {
  public:
    /** Takes ownership; a negative number is no descriptor. */
    explicit Descriptor(int fd = -1) : mFd(fd) {}
    Descriptor(Descriptor&& other) noexcept : mFd(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor() { reset(); }

    int get() const { return mFd; }
    bool isOpen() const { return mFd >= 0; }

    /** Gives up ownership. */
    int release();
    void reset();

  private:
    int mFd;
};

/** Writes all bytes, also after interruptions. Returns false, with errno set, on an error. */
bool writeAll(int fd, std::string_view bytes);

/** Appends everything up to the end of the file. Returns false, with errno set, on an error. */
bool readAll(int fd, std::string* bytes);

/** The text of an error number: "No space left on device". */
std::string errnoText(int error);

}  // namespace brevold
