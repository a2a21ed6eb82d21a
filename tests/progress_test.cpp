#include "base/progress.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <time.h>
#include <unistd.h>

#include "base/process_pool.h"
#include "base/temporary_file.h"
#include "replay/isolated_play.h"
#include "tests/inputs.h"
#include "trace/file_source.h"

namespace brevold {
namespace {

/** The time that std::chrono reads in this program, and how far each reading advances it. */
int64_t gNowMs, gStepMs;

std::string bar(const std::string& word, size_t filled, const std::string& percent) {
    return "\r" + word + " [" + std::string(filled, '#') + std::string(40 - filled, '.') + "] " +
           percent + " %";
}

constexpr char kErased[] = "\r\033[K";

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
        std::string output;
        char byte;
        while (read(mMaster, &byte, 1) == 1)
            output += byte;
        return output;
    }

  private:
    const int mStandardError;
    int mMaster = -1;
};

TEST(ProgressTest, AppearsAfterASecondAndDisappears) {
    Terminal terminal;
    {
        Progress progress("reading", 2000);
        const auto outputAfter = [&](int ms, int64_t done) {
            gNowMs += ms;
            progress.update(done);
            return terminal.output();
        };
        EXPECT_EQ(outputAfter(999, 1), "");
        EXPECT_EQ(outputAfter(1, 2), "");  // the time is read at every 1000th part
        EXPECT_EQ(outputAfter(0, 500), bar("reading", 10, " 25"));
        EXPECT_EQ(outputAfter(99, 1000), "");
        EXPECT_EQ(outputAfter(1, 1002), bar("reading", 20, " 50"));
        EXPECT_EQ(outputAfter(100, 2100), bar("reading", 40, "100"));

        Progress inner("playing", 1);
        gNowMs += 2000;
        inner.update(1);
        EXPECT_EQ(terminal.output(), "");
    }
    EXPECT_EQ(terminal.output(), kErased);
}

TEST(ProgressTest, EveryLongTaskHasABar) {
    const Descriptor file = createTemporaryFile();
    EXPECT_TRUE(writeAll(file.get(), std::string(2000, ' ')));
    trace::Timeline timeline;
    timeline.layers.emplace_back();
    timeline.events.resize(2);
    gStepMs = 1000;
    Terminal terminal;

    trace::FileSource source("/proc/self/fd/" + std::to_string(file.get()), "", {});
    test::rest(source);
    EXPECT_EQ(terminal.output(), bar("reading", 20, " 50") + bar("reading", 40, "100") + kErased);

    replay::playIsolated(timeline, {});
    EXPECT_EQ(terminal.output(),
              bar("replaying", 0, "  0") + bar("replaying", 20, " 50") + kErased);

    runInProcesses(std::vector<Job>(2, [] { return ""; }), 1, "jobs");
    EXPECT_EQ(terminal.output(),
              bar("jobs", 0, "  0") + bar("jobs", 20, " 50") + bar("jobs", 40, "100") + kErased);
    runInProcesses(std::vector<Job>(1, [] { return ""; }), 1, "jobs");
    EXPECT_EQ(terminal.output(), "");  // one job draws its own bars
}

}  // namespace
}  // namespace brevold

extern "C" int clock_gettime(clockid_t, timespec* time) noexcept {
    brevold::gNowMs += brevold::gStepMs;
    *time = {brevold::gNowMs / 1000, brevold::gNowMs % 1000 * 1'000'000};
    return 0;
}
