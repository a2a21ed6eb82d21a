#include "plot/gnuplot.h"

#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>

#include "base/child_process.h"
#include "base/descriptor.h"

namespace brevold::plot {

namespace {

/** An unnamed file. Unlike with a pipe, neither process waits for the other to read. */
class MemoryFile {
  public:
    explicit MemoryFile(const std::string& content = "")
          : mDescriptor(memfd_create("gnuplot", MFD_CLOEXEC)) {
        if (!mDescriptor.isOpen() || !writeAll(fd(), content)) fail();
        rewind();
    }

    int fd() const { return mDescriptor.get(); }

    std::string content() const {
        rewind();
        std::string bytes;
        if (!readAll(fd(), &bytes)) fail();
        return bytes;
    }

  private:
    void rewind() const {
        if (lseek(fd(), 0, SEEK_SET) != 0) fail();
    }

    [[noreturn]] static void fail() {
        throw std::runtime_error("no memory for gnuplot's files: " + errnoText(errno));
    }

    Descriptor mDescriptor;
};

std::string trimLines(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    const size_t first = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

}  // namespace

std::string runGnuplot(const std::string& script) {
    const MemoryFile input(script);
    const MemoryFile output;
    const MemoryFile messages;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.fd(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.fd(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, messages.fd(), STDERR_FILENO);
    // The script is given as a file, because gnuplot continues after an error in typed input.
    const char* const arguments[] = {"gnuplot", "--default-settings", "/dev/stdin", nullptr};
    pid_t child;
    const int error = posix_spawnp(&child, arguments[0], &actions, nullptr,
                                   const_cast<char* const*>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    const int status = error == 0 ? waitForChild(child) : 0;
    // posix_spawnp may report a missing program only as this exit status.
    constexpr int kNotFound = 127;
    if (error == ENOENT || (WIFEXITED(status) && WEXITSTATUS(status) == kNotFound)) {
        throw std::runtime_error(
                "--plot needs gnuplot, which is not installed: "
                "apt-get install gnuplot-nox");
    }
    if (error != 0) throw std::runtime_error("gnuplot: " + errnoText(error));
    std::string picture = output.content();
    if (status != 0 || picture.empty()) {
        throw std::runtime_error("gnuplot failed: " + trimLines(messages.content()));
    }
    return picture;
}

std::string gnuplotString(const std::string& text) {
    // gnuplot substitutes nothing between single quotes; a single quote is written twice.
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'') quoted += c;
        quoted += c >= ' ' && c <= '~' ? c : '?';
    }
    return quoted + "'";
}

}  // namespace brevold::plot
