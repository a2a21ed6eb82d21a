#pragma once

#include <string>
#include <string_view>

namespace brevold {

/** Owns a file descriptor and closes it. */
class Descriptor {
  public:
    /** Takes ownership of `fd`, unless it is negative. */
    explicit Descriptor(int fd = -1) : mFd(fd) {}
    Descriptor(Descriptor&& other) noexcept : mFd(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor() { reset(); }

    int get() const { return mFd; }
    bool isOpen() const { return mFd >= 0; }

    /** Gives up ownership: the caller closes the returned descriptor. */
    int release();
    /** Closes the descriptor now. */
    void reset() { close(); }
    /** Does the same. Returns false, with errno set, if an earlier write has failed. */
    bool close();

  private:
    int mFd;
};

/** Writes all bytes; retries after signals. Returns false, with errno set, on an error. */
bool writeAll(int fd, std::string_view bytes);

/** Appends the rest of the file to `bytes`. Returns false, with errno set, on an error. */
bool readAll(int fd, std::string* bytes);

/** Returns the text of an error number, such as "No space left on device". */
std::string errnoText(int error);

}  // namespace brevold
