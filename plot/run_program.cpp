#include "plot/run_program.h"

#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

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
          : mDescriptor(memfd_create("program", MFD_CLOEXEC)) {
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
        throw std::runtime_error("no memory for the files of a program: " + errnoText(errno));
    }

    Descriptor mDescriptor;
};

}  // namespace

ProgramResult runProgram(const std::vector<const char*>& arguments, const std::string& input) {
    const MemoryFile inputFile(input);
    const MemoryFile output;
    const MemoryFile errors;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, inputFile.fd(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.fd(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors.fd(), STDERR_FILENO);
    std::vector<char*> argv;
    for (const char* argument : arguments)
        argv.push_back(const_cast<char*>(argument));
    argv.push_back(nullptr);
    pid_t child;
    const int error = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    const int status = error == 0 ? waitForChild(child) : 0;
    // posix_spawnp may report a missing program only as this exit status.
    constexpr int kNotFound = 127;
    if (error == ENOENT || (WIFEXITED(status) && WEXITSTATUS(status) == kNotFound)) {
        return {false, true, "", ""};
    }
    if (error != 0) throw std::runtime_error(std::string(argv[0]) + ": " + errnoText(error));
    return {true, status != 0, output.content(), errors.content()};
}

}  // namespace brevold::plot
