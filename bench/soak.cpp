#include <dlfcn.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

#include "brevold/brevold.h"
#include "host/device_profile.h"
#include "host/fake_perf_client.h"
#include "host/virtual_platform.h"
#include "host/workers.h"

namespace brevold::bench {
namespace {

using host::ServiceCall;

constexpr int64_t kStartNs = 1000000000000;
constexpr int64_t kIdleGapNs = 200000000;
constexpr int64_t kWindowNs = 1000000000;
constexpr int32_t kUnclassified = 5;
constexpr int kScalingHint = 4166;
constexpr int32_t kQbBit = 1 << 22;
constexpr uint64_t kFramesOfRate = 3000;
constexpr int64_t kMaxGrowthBytes = 1 << 20;

struct Rate {
    int64_t tickNs;
    int64_t periodNs;
    int32_t mode;
};

constexpr Rate kRates[] = {
        {16666666, 16666666, 2}, {11111111, 11111111, 3}, {8333333, 8333333, 4},
        {33333333, 16666666, 1}, {40000000, 16666666, 0}, {25000000, 16666666, kUnclassified},
};

constexpr char kDebugLayer[] = "DebugOverlay#3";

struct Layer {
    const char* name;
    /** The application type of its package; 0 where its name has none. */
    int32_t appType;
};

constexpr int32_t kTargetType = 2;
constexpr Layer kLayers[] = {
        {"SurfaceView - com.example.game/com.example.game.MainActivity#0", kTargetType},
        {"SurfaceView - com.example.game/com.example.game.MainActivity#1", kTargetType},
        {"com.example.other.game/Main#12", kTargetType},
        {"com.example.reader/com.example.reader.PageActivity#4", 1},
        {"StatusBar without a number", 0},
        {kDebugLayer, 0},
};

/** What the service is asked, by kind; the verdicts too. */
struct Tally {
    uint64_t scalings = 0;
    uint64_t boosts = 0;
    uint64_t releases = 0;
    uint64_t boostsReleased = 0;
    uint64_t rateHints = 0;
    uint64_t rateReleases = 0;
    uint64_t queries = 0;
    uint64_t verdicts = 0;

    bool operator==(const Tally& other) const {
        return scalings == other.scalings && boosts == other.boosts && releases == other.releases &&
               boostsReleased == other.boostsReleased && rateHints == other.rateHints &&
               rateReleases == other.rateReleases && queries == other.queries &&
               verdicts == other.verdicts;
    }
};

void tallyCall(const ServiceCall& call, void* context) {
    Tally& sent = *static_cast<Tally*>(context);
    if (call.kind == ServiceCall::Kind::Query) {
        ++sent.queries;
    } else if (call.kind == ServiceCall::Kind::Release) {
        ++sent.rateReleases;
    } else if (call.identifier != kScalingHint) {
        ++sent.rateHints;
    } else if (call.duration == 0) {
        ++sent.releases;
        sent.boostsReleased += static_cast<uint64_t>(call.type);
    } else if ((call.type & kQbBit) != 0) {
        ++sent.scalings;
    } else {
        ++sent.boosts;
    }
}

struct Frame {
    int64_t nowNs;
    const Rate* rate;
    const Layer* layer;
    int32_t key;
    int32_t queued;
    /** Far slower than the display, so that a single queued frame asks for more. */
    bool isSlow;
    bool isSkipped;
    bool isFirstOfQueue;
    bool isSuppressed;
};

/** Keeps account of what is due, by the entries' contract and not by the library's state. */
class Account {
  public:
    const Tally& due() const { return mDue; }

    void tick(const Frame& frame, int64_t sinceTickNs) {
        if (sinceTickNs >= kIdleGapNs) {
            mMode = kUnclassified;
            mIsWindowOpen = false;
        } else if (!mIsWindowOpen) {
            mIsWindowOpen = true;
            mWindowStartNs = frame.nowNs;
        } else if (frame.nowNs - mWindowStartNs > kWindowNs) {
            mMode = frame.rate->mode;
            mIsWindowOpen = false;
        }
        mTickNs = frame.nowNs;
        if (mUnreleased == 0) return;
        ++mDue.releases;
        mDue.boostsReleased += mUnreleased;
        mUnreleased = 0;
    }

    void report(const Frame& frame) {
        if (mRatePeriodNs != frame.rate->periodNs) {
            if (mRatePeriodNs != 0) ++mDue.rateReleases;
            ++mDue.rateHints;
            mRatePeriodNs = frame.rate->periodNs;
        }
        if (!frame.isSkipped && frame.layer->name != std::string_view(kDebugLayer)) track(frame);
        if (frame.isFirstOfQueue) return;
        mMonitoredPeriodNs = frame.rate->periodNs;
        const bool isDue = frame.queued >= 2 || (frame.queued == 1 && frame.isSlow);
        if (mIsTarget && isDue && mHasStamp && isModeOfPeriod()) ++mDue.scalings;
        mHasStamp = true;
    }

    void vsync(const Frame& frame) {
        const bool isBusy = frame.queued >= 2;
        const int64_t sinceTickNs = frame.nowNs - mTickNs;
        if (mIsTarget && mIsUnchanged && frame.rate->periodNs == kRates[0].periodNs && mMode <= 1 &&
            !(isBusy && mWasBusy) && sinceTickNs > 0 && sinceTickNs < 18000000) {
            ++mDue.verdicts;
        }
        mWasBusy = isBusy;
    }

    void compose(const Frame& frame) {
        const bool isPiledUp =
                (isModeOfPeriod() && frame.queued >= 2) ||
                (mMode == 1 && mMonitoredPeriodNs == kRates[0].periodNs && frame.queued >= 3);
        if (!mIsTarget || !isPiledUp || frame.isSuppressed) return;
        if (mUnreleased++ == 0) ++mDue.boosts;
    }

  private:
    void track(const Frame& frame) {
        if (mLayer != frame.layer && frame.layer->appType != 0) {
            ++mDue.queries;
            mAppType = frame.layer->appType;
        }
        mIsTarget = mAppType == kTargetType;
        mIsUnchanged = mLayer == frame.layer && mKey == frame.key;
        if (!mIsUnchanged) mMode = kUnclassified;
        mLayer = frame.layer;
        mKey = frame.key;
    }

    bool isModeOfPeriod() const {
        for (const Rate& rate : kRates) {
            if (rate.mode == mMode) {
                return rate.tickNs == rate.periodNs && rate.periodNs == mMonitoredPeriodNs;
            }
        }
        return false;
    }

    Tally mDue;
    int32_t mMode = kUnclassified;
    bool mIsWindowOpen = false;
    int64_t mWindowStartNs = 0;
    int64_t mTickNs = 0;
    uint64_t mUnreleased = 0;
    int64_t mRatePeriodNs = 0;
    int64_t mMonitoredPeriodNs = 0;
    bool mHasStamp = false;
    const Layer* mLayer = nullptr;
    int32_t mKey = 0;
    int32_t mAppType = -1;
    bool mIsTarget = false;
    bool mIsUnchanged = false;
    bool mWasBusy = false;
};

void startDevice(Tally& sent) {
    for (const std::string& entry :
         {std::string("vendor.display.use_smooth_motion=1"),
          std::string("vendor.perf.fps_switch.enable=1"), std::string("vendor.perf.jr10.enable=1"),
          std::string("vendor.perf.pfar.enable=1"), std::string("vendor.perf.pfar.down.enable=1"),
          std::string("feature.4=1"), std::string("feature.5=1"), std::string("app-type.*=2"),
          std::string("app-type.com.example.reader=1"),
          "vendor.perf.brevold.debug.layers=" + std::string(kDebugLayer)}) {
        host::setProfileEntry(entry);
    }
    void* const features = dlopen(BREVOLD_FAKES "/libfeatgate_system.so", RTLD_NOW);
    void* const client = dlopen(BREVOLD_FAKES "/libvnx-perfd-client_system.so", RTLD_NOW);
    if (features == nullptr || client == nullptr) throw std::runtime_error(dlerror());
    reinterpret_cast<decltype(&host::perfd_set_listener)>(dlsym(client, host::kSetServiceListener))(
            tallyCall, &sent);
    host::setTimeNs(kStartNs);
    if (!brevoldInit()) throw std::runtime_error("no feature is on");
    host::settle();
}

/** Plays the frames one by one; each call's hints are sent before the next call. */
class Player {
  public:
    Player() {
        mFrame.nowNs = kStartNs;
        mFrame.layer = kLayers;
    }

    void play(Account& account, Tally& sent) {
        choose();
        host::setTimeNs(mFrame.nowNs);
        account.tick(mFrame, mFrame.nowNs - mTickNs);
        mTickNs = mFrame.nowNs;
        brevoldRefresh();
        host::settle();

        account.report(mFrame);
        report();
        host::settle();

        mFrame.nowNs += mRandom() % 2 == 0 ? 0 : 1000000;
        host::setTimeNs(mFrame.nowNs);
        account.vsync(mFrame);
        sent.verdicts +=
                static_cast<uint64_t>(brevoldMonitor(mFrame.queued, mFrame.rate->periodNs));

        const uint32_t compositions = 1 + mRandom() % 2;
        for (uint32_t i = 0; i < compositions; ++i) {
            account.compose(mFrame);
            brevoldScaling(mFrame.queued, mFrame.isSuppressed ? 1 : 0);
            host::settle();
        }
        ++mFrames;
    }

  private:
    /** The rate changes across an idle gap only, so that each window has one rate. */
    void choose() {
        const bool isNewRate = mFrames % kFramesOfRate == 0;
        if (isNewRate) mFrame.rate = &kRates[mRandom() % std::size(kRates)];
        mFrame.nowNs = mTickNs + (isNewRate ? kIdleGapNs : mFrame.rate->tickNs);
        if (mRandom() % 1500 == 0) mFrame.layer = &kLayers[mRandom() % std::size(kLayers)];
        if (mRandom() % 3000 == 0) mFrame.key = static_cast<int32_t>(mRandom() % 2);
        mFrame.queued = static_cast<int32_t>(mRandom() % 5) - 1;
        mFrame.isSlow = mRandom() % 4 == 0;
        mFrame.isSkipped = mRandom() % 16 == 0;
        mFrame.isFirstOfQueue = mRandom() % 64 == 0;
        mFrame.isSuppressed = mRandom() % 4 == 0;
    }

    void report() const {
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
        brevoldOnFrameAvailable(&info);
    }

    // Its values are the standard's, alike everywhere; the distributions' are not.
    std::mt19937 mRandom{20240229};
    Frame mFrame = {};
    int64_t mTickNs = kStartNs;
    uint64_t mFrames = 0;
};

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

void print(const char* what, uint64_t sent, uint64_t due) {
    printf("%-24s %12llu %12llu\n", what, static_cast<unsigned long long>(sent),
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
    static Tally sent;
    startDevice(sent);
    const int64_t threadsBefore = threadCount();
    const uint64_t warmUp = frames / 10;
    int64_t residentBefore = residentBytes();
    Account account;
    Player player;
    bool isSame = true;
    size_t logLines = 0;
    uint64_t played = 0;
    const auto start = std::chrono::steady_clock::now();
    for (; played < frames && isSame; ++played) {
        if (played == warmUp) residentBefore = residentBytes();
        player.play(account, sent);
        isSame = sent == account.due();
        if (played % 10000 == 0) logLines += host::takeLog().size();
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    logLines += host::takeLog().size();
    const int64_t growth = residentBytes() - residentBefore;
    const int64_t threadsLeft = threadCount() - threadsBefore;

    printTallies(sent, account.due());
    printf("%llu frames in %.0f s; resident memory grew by %lld bytes since frame %llu; "
           "%lld threads left over; %zu log lines\n",
           static_cast<unsigned long long>(played), elapsed.count(), static_cast<long long>(growth),
           static_cast<unsigned long long>(warmUp), static_cast<long long>(threadsLeft), logLines);
    if (!isSame) fprintf(stderr, "brevold-soak: sent and due differ after the last frame\n");
    return isSame && growth < kMaxGrowthBytes && threadsLeft == 0 && logLines == 0;
}

}  // namespace
}  // namespace brevold::bench

int main(int argc, char** argv) {
    CLI::App app("Plays frames in virtual time and counts the hints.");
    uint64_t frames = 10000000;
    app.add_option("FRAMES", frames, "frames to play")->check(CLI::PositiveNumber);
    CLI11_PARSE(app, argc, argv);
    try {
        return brevold::bench::soak(frames) ? 0 : 1;
    } catch (const std::exception& error) {
        fprintf(stderr, "brevold-soak: %s\n", error.what());
        return 2;
    }
}
