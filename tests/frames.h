#pragma once

#include <cstdint>
#include <string>

#include "brevold/brevold.h"

// Random frames of several applications and refresh rates, for the library's tests, its fuzz target
// and the soak.

namespace brevold::test {

/** A steady rate of refresh ticks, its refresh period and the mode that it must be measured as. */
struct Rate {
    int64_t tickNs;
    int64_t periodNs;
    int32_t mode;
};

constexpr Rate kRates[] = {
        {16666666, 16666666, 2}, {11111111, 11111111, 3}, {8333333, 8333333, 4},
        {33333333, 16666666, 1}, {40000000, 16666666, 0}, {25000000, 16666666, 5},
};

struct Layer {
    const char* name;
    /** Empty if the name has no package. */
    const char* package;
    int32_t appType;
};

// Inline, because layers are compared by address.
inline constexpr Layer kLayers[] = {
        {"SurfaceView - com.example.game/com.example.game.Main#0", "com.example.game", 2},
        {"SurfaceView - com.example.game/com.example.game.Main#1", "com.example.game", 2},
        {"com.example.other/Main#12", "com.example.other", 2},
        {"com.example.reader/Page#4", "com.example.reader", 1},
        {"StatusBar without a number", "", -1},
        {"DebugOverlay#3", "DebugOverlay", 1},
};

inline constexpr const Layer& kDebugLayer = kLayers[5];

/** Input of the library around one refresh tick. */
struct Frame {
    int64_t nowNs = 0;
    const Rate* rate = kRates;
    const Layer* layer = kLayers;
    int32_t key = 0;
    int32_t queued = 0;
    /** Much slower than the display: a single queued frame is due an UP request. */
    bool isSlow = false;
    bool isSkipped = false, isFirstOfQueue = false, hasOtherPeer = false, isSuppressed = false;
};

constexpr int64_t kStampAgeNs = 2000000;

inline int64_t intervalNsOf(const Frame& frame) {
    return frame.rate->periodNs * (frame.isSlow ? 4 : 1);
}

inline LayerFrameInfo infoOf(const Frame& frame) {
    LayerFrameInfo info = {};
    info.skipLayerCheck = frame.isSkipped ? 1 : 0;
    info.layerKeyA = frame.key & 1;
    info.layerKeyB = frame.key & 2;
    info.lastMaxQueuedFrames = frame.queued;
    info.layerName = frame.layer->name;
    info.peerLayerName = frame.hasOtherPeer ? "peer" : frame.layer->name;
    info.qbTime = frame.nowNs;
    info.sfTime = frame.nowNs - kStampAgeNs;
    info.lastQbTime = frame.isFirstOfQueue ? -1 : frame.nowNs - intervalNsOf(frame);
    info.refreshPeriod = frame.rate->periodNs;
    return info;
}

/** Makes `frame` the next one, at the next tick; pick(n) returns a random number below n. */
template <typename Pick>
void advance(Frame& frame, int64_t& tickNs, Pick pick) {
    // The rate changes only after an idle gap, so each frame-rate window has one rate.
    const bool isNewRate = pick(300) == 0;
    if (isNewRate) frame.rate = &kRates[pick(std::size(kRates))];
    frame.nowNs = tickNs += isNewRate ? 200000000 : frame.rate->tickNs;
    if (pick(150) == 0) frame.layer = &kLayers[pick(std::size(kLayers))];
    if (pick(300) == 0) frame.key = static_cast<int32_t>(pick(4));
    frame.queued = static_cast<int32_t>(pick(5)) - 1;
    frame.isSlow = pick(4) == 0;
    frame.isSkipped = pick(16) == 0;
    frame.isFirstOfQueue = pick(64) == 0;
    frame.hasOtherPeer = pick(32) == 0;
    frame.isSuppressed = pick(4) == 0;
}

}  // namespace brevold::test
