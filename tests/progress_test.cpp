#include "base/progress.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

namespace brevold {
namespace {

Progress::Clock::time_point gNow;

/** Makes standard error a terminal, and reads what was written to it. */
class Terminal {
  public:
    Terminal() : mStandardError(dup(STDERR_FILENO)) {
        int slave = -1;
        EXPECT_EQ(openpty(&mMaster, &slave, nullptr, nullptr, nullptr), 0);
        dup2(slave, STDERR_FILENO);
        close(slave);
        fcntl(mMaster, F_SETFL, O_NONBLOCK);
    }
    ~Terminal() {
        dup2(mStandardError, STDERR_FILENO);
        close(mStandardError);
        close(mMaster);
    }
    std::string output() {
        char bytes[256];
        const ssize_t count = read(mMaster, bytes, sizeof(bytes));
        return count < 0 ? "" : std::string(bytes, static_cast<size_t>(count));
    }

  private:
    const int mStandardError;
    int mMaster = -1;
};

TEST(ProgressTest, AppearsAfterASecondAndDisappears) {
    const auto now = [] { return gNow; };
    const auto bar = [](size_t filled, const char* percent) {
        return "\rreading [" + std::string(filled, '#') + std::string(40 - filled, '.') + "] " +
               percent + " %";
    };
    Terminal terminal;
    {
        Progress progress("reading", 2000, now);
        const auto outputAfter = [&](int ms, int64_t done) {
            gNow += std::chrono::milliseconds(ms);
            progress.update(done);
            return terminal.output();
        };
        EXPECT_EQ(outputAfter(999, 1), "");
        EXPECT_EQ(outputAfter(1, 2), "");  // the time is read at every 1000th part
        EXPECT_EQ(outputAfter(0, 500), bar(10, " 25"));
        EXPECT_EQ(outputAfter(99, 1000), "");
        EXPECT_EQ(outputAfter(1, 1002), bar(20, " 50"));
        EXPECT_EQ(outputAfter(100, 2100), bar(40, "100"));

        Progress inner("playing", 1, now);
        gNow += std::chrono::seconds(2);
        inner.update(1);
        EXPECT_EQ(terminal.output(), "");
    }
    EXPECT_EQ(terminal.output(), "\r\033[K");
}

}  // namespace
}  // namespace brevold
