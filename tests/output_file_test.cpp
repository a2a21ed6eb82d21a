// Output files: replaced files, direct writes, and no partial files.

#include "base/output_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "base/error.h"
#include "tests/inputs.h"

namespace brevold {
namespace {

namespace fs = std::filesystem;
using test::contentOf;

class OutputFileTest : public testing::Test {
  protected:
    OutputFileTest() : mFolder(testing::TempDir() + "output" + std::to_string(getpid())) {
        fs::create_directory(mFolder);
        fs::current_path(mFolder);
    }
    ~OutputFileTest() override {
        fs::current_path("/");
        fs::remove_all(mFolder);
    }

    static void write(const std::string& path, const std::string& content) {
        OutputFile file(path);
        file.stream() << content;
        file.commit();
    }
    static std::ptrdiff_t fileCount() {
        return std::distance(fs::directory_iterator("."), fs::directory_iterator());
    }

    const fs::path mFolder;
};

TEST_F(OutputFileTest, ReplacesAFileOnlyWhenItIsWhole) {
    write("a", "old");
    chmod("a", 0640);
    {
        OutputFile file("a");
        file.stream() << std::string(100'000, 'x');
        EXPECT_EQ(contentOf("a"), "old");
        EXPECT_EQ(fileCount(), 2);
    }
    EXPECT_EQ(contentOf("a"), "old");
    EXPECT_EQ(fileCount(), 1);
    write("a", std::string(100'000, 'y'));
    EXPECT_EQ(contentOf("a"), std::string(100'000, 'y'));
    const mode_t mask = umask(027);
    write("b", "new");
    umask(mask);
    for (const char* const path : {"a", "b"})
        EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640)) << path;
    EXPECT_EQ(fileCount(), 2);
}

TEST_F(OutputFileTest, FollowsLinks) {
    fs::create_directory("folder");
    write("folder/a", "old");
    fs::create_symlink("folder/a", "link");
    fs::create_symlink("link", "second");
    fs::create_symlink("folder/none", "dangling");
    fs::create_symlink("loop", "loop");
    write("second", "new");
    write("dangling", "new");
    EXPECT_EQ(contentOf("folder/a") + contentOf("folder/none"), "newnew");
    EXPECT_TRUE(fs::is_symlink("second") && fs::is_symlink("link") && fs::is_symlink("dangling"));
    EXPECT_EQ(test::errorOf<OutputError>([] { write("loop", "x"); }),
              "loop: Too many levels of symbolic links");
}

TEST_F(OutputFileTest, WritesDirectlyToOtherFiles) {
    const int file = open("a", O_RDWR | O_CREAT, 0600);
    ASSERT_EQ(::write(file, "before ", 7), 7);
    fs::create_symlink("/dev/fd/" + std::to_string(file), "link");
    write("/dev/fd/" + std::to_string(file), "one ");
    write("link", "two");
    close(file);
    EXPECT_EQ(contentOf("a"), "before one two");
    EXPECT_TRUE(fs::is_symlink("link"));

    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    const int reader = open("fifo", O_RDONLY | O_NONBLOCK);
    write("fifo", "piped");
    char bytes[8] = {};
    EXPECT_EQ(read(reader, bytes, sizeof(bytes)), 5);
    close(reader);
    EXPECT_EQ(std::string(bytes), "piped");
    EXPECT_TRUE(fs::is_fifo("fifo"));
    EXPECT_EQ(fileCount(), 3);
}

TEST_F(OutputFileTest, ASignalRemovesPartialFiles) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const pid_t child = fork();
        if (child == 0) {
            std::signal(signal, SIG_DFL);  // shells ignore SIGINT in the background
            OutputFile files[] = {OutputFile("a"), OutputFile("b")};
            raise(signal);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        EXPECT_EQ(fileCount(), 0);
    }
}

}  // namespace
}  // namespace brevold
