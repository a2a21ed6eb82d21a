#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace brevold::fuzz {

/** Aborts if the condition does not hold. libFuzzer then reports the input. */
inline void require(bool holds, const char* condition) {
    if (holds) return;
    fprintf(stderr, "does not hold: %s\n", condition);
    abort();
}

/** A file in memory that holds the current input. */
struct InputFile {
    const int fd = memfd_create("input", 0);
    const std::string path = "/proc/self/fd/" + std::to_string(fd);

    void write(const uint8_t* data, size_t size) const {
        require(ftruncate(fd, 0) == 0 && lseek(fd, 0, SEEK_SET) == 0 &&
                        ::write(fd, data, size) == static_cast<ssize_t>(size),
                "the input is written");
    }
    void requireNamed(const char* error) const {
        require(std::string(error).rfind(path + ":", 0) == 0, "an error names the file");
    }
};

}  // namespace brevold::fuzz
