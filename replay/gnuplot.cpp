#include "replay/gnuplot.h"

#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace brevold::replay {

namespace {

/** A file without a name, so that neither process waits for the other to read. */
class MemoryFile {
  public:
    explicit MemoryFile(const std::string& bytes) : mFd(memfd_create("gnuplot", MFD_CLOEXEC)) {
        for (size_t done = 0; done < bytes.size();) {
            const ssize_t count = write(mFd, bytes.data() + done, bytes.size() - done);
            if (count <= 0) throw std::runtime_error("no memory for what gnuplot is to draw");
            done += static_cast<size_t>(count);
        }
        lseek(mFd, 0, SEEK_SET);
    }
    ~MemoryFile() { close(mFd); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int fd() const { return mFd; }

    std::string bytes() const {
        std::string bytes(static_cast<size_t>(lseek(mFd, 0, SEEK_END)), '\0');
        const ssize_t count = pread(mFd, bytes.data(), bytes.size(), 0);
        bytes.resize(static_cast<size_t>(std::max<ssize_t>(count, 0)));
        return bytes;
    }

  private:
    const int mFd;
};

std::string trimLines(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    const size_t first = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

}  // namespace

std::string runGnuplot(const std::string& script) {
    const MemoryFile input(script);
    const MemoryFile output("");
    const MemoryFile messages("");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.fd(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.fd(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, messages.fd(), STDERR_FILENO);
    // Without the user's own settings; and by a file's name, as gnuplot would go on after an error
    // in what it takes for typed.
    const char* const arguments[] = {"gnuplot", "--default-settings", "/dev/stdin", nullptr};
    pid_t child;
    const int error = posix_spawnp(&child, arguments[0], &actions, nullptr,
                                   const_cast<char* const*>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (error == 0) waitpid(child, &status, 0);
    // A child that could not become gnuplot may tell so only by this status.
    constexpr int kNotFound = 127;
    if (error == ENOENT || (WIFEXITED(status) && WEXITSTATUS(status) == kNotFound)) {
        throw std::runtime_error(
                "--plot needs gnuplot, which is not installed: "
                "apt-get install gnuplot-nox");
    }
    if (error != 0) throw std::runtime_error(std::string("gnuplot: ") + strerror(error));
    std::string picture = output.bytes();
    if (status != 0 || picture.empty()) {
        throw std::runtime_error("gnuplot failed: " + trimLines(messages.bytes()));
    }
    return picture;
}

std::string gnuplotString(const std::string& text) {
    // Single quotes keep gnuplot from substituting anything; only they themselves need doubling.
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'') quoted += c;
        quoted += c >= ' ' && c <= '~' ? c : '?';
    }
    return quoted + "'";
}

}  // namespace brevold::replay
