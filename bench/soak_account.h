#pragma once

#include <cstdint>

#include "brevold/frame_rate.h"
#include "brevold/protocol.h"
#include "host/fake_perf_client.h"

namespace brevold::bench {

/** A steady rate of refresh ticks, its refresh period and the mode that it must be measured as. */
struct Rate {
    int64_t tickNs;
    int64_t periodNs;
    int32_t mode;
};

constexpr int64_t kPeriod60Ns = 16666666;
constexpr Rate kRates[] = {
        {kPeriod60Ns, kPeriod60Ns, android::kMode60Fps},
        {11111111, 11111111, android::kMode90Fps},
        {8333333, 8333333, android::kMode120Fps},
        {33333333, kPeriod60Ns, android::kMode30Fps},
        {40000000, kPeriod60Ns, android::kModeLow},
        {25000000, kPeriod60Ns, android::kModeUnclassified},
};

struct Layer {
    const char* name;
    /** Application type of the package, or 0 if the name has no package. */
    int32_t appType;
};

// Inline, because layers are compared by address.
inline constexpr Layer kLayers[] = {
        {"SurfaceView - com.example.game/com.example.game.MainActivity#0", android::kTargetAppType},
        {"SurfaceView - com.example.game/com.example.game.MainActivity#1", android::kTargetAppType},
        {"com.example.other.game/Main#12", android::kTargetAppType},
        {"com.example.reader/com.example.reader.PageActivity#4", 1},
        {"StatusBar without a number", 0},
        {"DebugOverlay#3", 0},
};
inline constexpr const Layer& kDebugLayer = kLayers[5];

/** Input of the library around one refresh tick. */
struct Frame {
    int64_t nowNs;
    const Rate* rate;
    const Layer* layer;
    int32_t key;
    int32_t queued;
    /** Much slower than the display: a single queued frame is due an UP request. */
    bool isSlow;
    bool isSkipped;
    bool isFirstOfQueue;
    bool isSuppressed;
};

/** Counts of the requests to the service and of the verdicts of 1. */
struct Tally {
    uint64_t scalings = 0;
    uint64_t boosts = 0;
    uint64_t releases = 0;
    uint64_t boostsReleased = 0;
    uint64_t rateHints = 0;
    uint64_t rateReleases = 0;
    uint64_t queries = 0;
    uint64_t verdicts = 0;

    void add(const host::ServiceCall& call);
    bool operator==(const Tally& other) const;
};

/**
 * Counts the requests that are due, from the contract of the entry points and not from the state of
 * the library. Call a function before the entry point with the same input.
 */
class Account {
  public:
    const Tally& due() const { return mDue; }

    void tick(const Frame& frame);
    void report(const Frame& frame);
    void vsync(const Frame& frame);
    void compose(const Frame& frame);

  private:
    void track(const Frame& frame);
    bool isModeOfPeriod() const;

    Tally mDue;
    int32_t mMode = android::kModeUnclassified;
    bool mIsWindowOpen = false;
    int64_t mWindowStartNs = 0;
    int64_t mTickNs = 0;
    uint64_t mUnreleased = 0;
    int64_t mRatePeriodNs = 0;
    int64_t mMonitoredPeriodNs = 0;
    bool mHasStamp = false;
    const Layer* mLayer = nullptr;
    int32_t mKey = 0;
    int32_t mAppType = android::kUnknownAppType;
    bool mIsTarget = false;
    bool mIsUnchanged = false;
    bool mWasBusy = false;
};

}  // namespace brevold::bench
