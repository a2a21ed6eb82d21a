#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "bench/soak_account.h"
#include "host/device_profile.h"
#include "host/driver.h"
#include "host/virtual_platform.h"

namespace brevold::bench {
namespace {

constexpr int64_t kStartNs = 1000000000000;
constexpr int64_t kPauseNs = 200000000;  // longer than an idle gap
constexpr uint64_t kFramesPerRate = 3000;
constexpr int64_t kMaxGrowthBytes = 1 << 20;

/** Plays random frames, one by one. Each call's hints are sent before the next call. */
class Player {
  public:
    Player() : mDriver(host::Workers::Stepped) {
        if (!mDriver.init(kStartNs)) throw std::runtime_error("no feature is on");
        mFrame.nowNs = kStartNs;
        mFrame.layer = kLayers;
    }

    const Tally& sent() const { return mSent; }

    void play(Account& account) {
        choose();
        account.tick(mFrame);
        mTickNs = mFrame.nowNs;
        mDriver.beginComposition(mFrame.nowNs);

        account.report(mFrame);
        report();

        mFrame.nowNs += mRandom() % 2 == 0 ? 0 : 1000000;
        account.vsync(mFrame);
        if (mDriver.vsync(mFrame.nowNs, mFrame.queued, mFrame.rate->periodNs)) ++mSent.verdicts;

        const uint32_t compositions = 1 + mRandom() % 2;
        for (uint32_t i = 0; i < compositions; ++i) {
            account.compose(mFrame);
            mDriver.endComposition(mFrame.nowNs, mFrame.queued, mFrame.isSuppressed);
        }
        for (const host::ServiceCall& call : mDriver.takeServiceCalls())
            mSent.add(call);
        ++mFrames;
    }

  private:
    /** The rate changes only after a pause, so that each window has one rate. */
    void choose() {
        const bool isNewRate = mFrames % kFramesPerRate == 0;
        if (isNewRate) mFrame.rate = &kRates[mRandom() % std::size(kRates)];
        mFrame.nowNs = mTickNs + (isNewRate ? kPauseNs : mFrame.rate->tickNs);
        if (mRandom() % 1500 == 0) mFrame.layer = &kLayers[mRandom() % std::size(kLayers)];
        if (mRandom() % 3000 == 0) mFrame.key = static_cast<int32_t>(mRandom() % 2);
        mFrame.queued = static_cast<int32_t>(mRandom() % 5) - 1;
        mFrame.isSlow = mRandom() % 4 == 0;
        mFrame.isSkipped = mRandom() % 16 == 0;
        mFrame.isFirstOfQueue = mRandom() % 64 == 0;
        mFrame.isSuppressed = mRandom() % 4 == 0;
    }

    void report() {
        LayerFrameInfo info = {};
        info.skipLayerCheck = mFrame.isSkipped ? 1 : 0;
        info.layerKeyA = info.layerKeyB = mFrame.key;
        info.lastMaxQueuedFrames = mFrame.queued;
        info.layerName = info.peerLayerName = mFrame.layer->name;
        info.qbTime = mFrame.nowNs;
        info.sfTime = mFrame.nowNs - 2000000;
        const int64_t periodNs = mFrame.rate->periodNs;
        const int64_t intervalNs = mFrame.isSlow ? 4 * periodNs : periodNs;
        info.lastQbTime = mFrame.isFirstOfQueue ? -1 : mFrame.nowNs - intervalNs;
        info.refreshPeriod = periodNs;
        mDriver.frame(mFrame.nowNs, info);
    }

    host::Driver mDriver;
    Tally mSent;
    // The standard fixes its values; those of the distributions differ between libraries.
    std::mt19937 mRandom{20240229};
    Frame mFrame = {};
    int64_t mTickNs = kStartNs;
    uint64_t mFrames = 0;
};

void fillProfile() {
    host::turnEverythingOn();
    host::setProfileEntry("app-type.com.example.reader=1");
    host::setProfileEntry(std::string(android::kDebugLayersProperty) + "=" + kDebugLayer.name);
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

void print(const char* label, uint64_t sent, uint64_t due) {
    printf("%-24s %12llu %12llu\n", label, static_cast<unsigned long long>(sent),
           static_cast<unsigned long long>(due));
}

void printTallies(const Tally& sent, const Tally& due) {
    printf("%-24s %12s %12s\n", "", "sent", "due");
    print("DOWN and UP hints", sent.scalings, due.scalings);
    print("jank boosts", sent.boosts, due.boosts);
    print("releases", sent.releases, due.releases);
    print("boosts released", sent.boostsReleased, due.boostsReleased);
    print("refresh-rate hints", sent.rateHints, due.rateHints);
    print("refresh-rate releases", sent.rateReleases, due.rateReleases);
    print("application queries", sent.queries, due.queries);
    print("verdicts of 1", sent.verdicts, due.verdicts);
}

bool soak(uint64_t frames) {
    fillProfile();
    Player player;
    Account account;
    const int64_t threadsBefore = threadCount();
    const uint64_t warmUp = frames / 10;
    int64_t residentBefore = residentBytes();
    bool isSame = true;
    size_t logLines = 0;
    uint64_t played = 0;
    const auto start = std::chrono::steady_clock::now();
    for (; played < frames && isSame; ++played) {
        if (played == warmUp) residentBefore = residentBytes();
        player.play(account);
        isSame = player.sent() == account.due();
        if (played % 10000 == 0) logLines += host::takeLog().size();
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    logLines += host::takeLog().size();
    const int64_t growth = residentBytes() - residentBefore;
    const int64_t newThreads = threadCount() - threadsBefore;

    printTallies(player.sent(), account.due());
    printf("%llu frames in %.0f s; resident memory grew by %lld bytes since frame %llu; "
           "%lld new threads; %zu log lines\n",
           static_cast<unsigned long long>(played), elapsed.count(), static_cast<long long>(growth),
           static_cast<unsigned long long>(warmUp), static_cast<long long>(newThreads), logLines);
    if (!isSame) fprintf(stderr, "brevold-soak: sent and due differ after the last frame\n");
    return isSame && growth < kMaxGrowthBytes && newThreads == 0 && logLines == 0;
}

}  // namespace
}  // namespace brevold::bench

int main(int argc, char** argv) {
    CLI::App app("Plays random frames in virtual time and compares the hints sent with those due.");
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
