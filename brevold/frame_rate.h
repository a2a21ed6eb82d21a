#pragma once

#include <cstdint>

namespace android {

/** The frame-rate mode where no steady rate was measured, or the display was idle. */
constexpr int32_t kModeUnclassified = 5;

/** This long without a refresh tick is an idle display. */
constexpr int64_t kIdleGapNs = 150000000;

/** What belongs together around one display refresh rate. */
struct RefreshBand {
    int64_t minPeriodNs;
    int64_t maxPeriodNs;
    int32_t rateHz;
    /** The frame-rate mode of an application that keeps up with the display. */
    int32_t mode;
};

constexpr RefreshBand kRefreshBands[] = {
        {16000001, 16999999, 60, 2},
        {10800001, 11699999, 90, 3},
        {8000001, 8999999, 120, 4},
};

/** The band that holds a refresh period, both ends included; null outside of all three. */
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

}  // namespace android
