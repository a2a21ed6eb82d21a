#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "brevold/protocol.h"
#include "host/device_profile.h"
#include "host/driver.h"
#include "host/virtual_platform.h"
#include "tests/frames.h"

namespace brevold::bench {
namespace {

constexpr int64_t kStartNs = 1000000000000;
constexpr int64_t kMaxGrowthBytes = 1 << 20;

/** Plays random frames, one by one. Each call's hints are sent before the next call. */
class Player {
  public:
    Player() : mDriver(host::Workers::Stepped) {
        if (!mDriver.init(kStartNs)) throw std::runtime_error("no feature is on");
    }

    /** Returns the number of calls of the service. */
    size_t play() {
        advance(mFrame, mTickNs, [this](size_t below) { return mRandom() % below; });
        mDriver.beginComposition(mFrame.nowNs);
        LayerFrameInfo info = infoOf(mFrame);
        mDriver.frame(mFrame.nowNs, info);
        mDriver.vsync(mFrame.nowNs + 1000000, mFrame.queued, mFrame.rate->periodNs);
        mDriver.endComposition(mFrame.nowNs + 1000000, mFrame.queued, mFrame.isSuppressed);
        return mDriver.takeServiceCalls().size();
    }

  private:
    host::Driver mDriver;
    // The standard fixes its values; those of the distributions differ between libraries.
    std::mt19937 mRandom;
    test::Frame mFrame;
    int64_t mTickNs = kStartNs;
};

void fillProfile() {
    host::turnEverythingOn();
    host::setProfileEntry("app-type.com.example.reader=1");
    host::setProfileEntry(std::string(android::kDebugLayersProperty) + "=" +
                          test::kDebugLayer.name);
}

int64_t residentBytes() {
    std::ifstream statm("/proc/self/statm");
    int64_t total = 0;
    int64_t resident = 0;
    statm >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

int64_t threadCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

bool soak(uint64_t frames) {
    fillProfile();
    Player player;
    const int64_t threadsBefore = threadCount();
    const uint64_t warmUp = frames / 10;
    int64_t residentBefore = residentBytes();
    uint64_t calls = 0;
    size_t logLines = 0;
    const auto start = std::chrono::steady_clock::now();
    for (uint64_t played = 0; played < frames; ++played) {
        if (played == warmUp) residentBefore = residentBytes();
        calls += player.play();
        if (played % 10000 == 0) logLines += host::takeLog().size();
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    logLines += host::takeLog().size();
    const int64_t growth = residentBytes() - residentBefore;
    const int64_t newThreads = threadCount() - threadsBefore;

    printf("%llu frames and %llu calls of the service in %.0f s; resident memory grew by %lld "
           "bytes since frame %llu; %lld new threads; %zu log lines\n",
           static_cast<unsigned long long>(frames), static_cast<unsigned long long>(calls),
           elapsed.count(), static_cast<long long>(growth), static_cast<unsigned long long>(warmUp),
           static_cast<long long>(newThreads), logLines);
    return calls != 0 && growth < kMaxGrowthBytes && newThreads == 0 && logLines == 0;
}

}  // namespace
}  // namespace brevold::bench

int main(int argc, char** argv) {
    CLI::App app("Plays random frames in virtual time and watches memory and threads.");
    uint64_t frames = 10000000;
    app.add_option("FRAMES", frames, "number of frames to play")->check(CLI::PositiveNumber);
    CLI11_PARSE(app, argc, argv);
    try {
        return brevold::bench::soak(frames) ? 0 : 1;
    } catch (const std::exception& error) {
        fprintf(stderr, "brevold-soak: %s\n", error.what());
        return 2;
    }
}
