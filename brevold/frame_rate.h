#pragma once

#include <cstdint>
#include <string_view>

namespace android {

// Frame-rate modes.
constexpr int32_t kModeLow = 0;  // 27 fps or less
constexpr int32_t kMode30Fps = 1;
constexpr int32_t kMode60Fps = 2;
constexpr int32_t kMode90Fps = 3;
constexpr int32_t kMode120Fps = 4;
constexpr int32_t kModeUnclassified = 5;  // no steady rate was measured, or the display was idle

// Display refresh rates.
constexpr int32_t kRate60Hz = 60;
constexpr int32_t kRate90Hz = 90;
constexpr int32_t kRate120Hz = 120;

/** The refresh periods of one refresh rate, both ends included. */
struct RefreshBand {
    int64_t minPeriodNs;
    int64_t maxPeriodNs;
    int32_t rateHz;
    /** The frame-rate mode of an application that keeps up with the display. */
    int32_t mode;
};

constexpr RefreshBand kRefreshBands[] = {
        {16000001, 16999999, kRate60Hz, kMode60Fps},
        {10800001, 11699999, kRate90Hz, kMode90Fps},
        {8000001, 8999999, kRate120Hz, kMode120Fps},
};

/** Returns the band that contains a refresh period, or null if none does. */
constexpr const RefreshBand* refreshBandOf(int64_t periodNs) {
    for (const RefreshBand& band : kRefreshBands) {
        // One unsigned comparison: a period below the band, or negative, wraps to a huge value.
        if (static_cast<uint64_t>(periodNs) - static_cast<uint64_t>(band.minPeriodNs) <=
            static_cast<uint64_t>(band.maxPeriodNs - band.minPeriodNs)) {
            return &band;
        }
    }
    return nullptr;
}

// Two events reset the mode to kModeUnclassified: an idle gap between refresh ticks, and a frame of
// a tracked layer that is not the current one.

constexpr int64_t kIdleGapNs = 150000000;

/** Returns true if the display was idle between two refresh ticks that are this far apart. */
constexpr bool isIdleGap(int64_t intervalNs) {
    return intervalNs >= kIdleGapNs;
}

/** A layer as a frame report names it. The keys are opaque identity values. */
struct LayerIdentity {
    std::string_view name;
    int32_t keyA;
    int32_t keyB;
};

constexpr bool isSameLayer(const LayerIdentity& a, const LayerIdentity& b) {
    return a.name == b.name && a.keyA == b.keyA && a.keyB == b.keyB;
}

}  // namespace android
