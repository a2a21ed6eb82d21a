#pragma once

#include <cstdint>

#include "brevold/frame_rate.h"

/**
 * The interface between the library and the performance service, the feature switch and the
 * settings. The tools that answer or decode the library's requests share it.
 */
namespace android {

// Libraries opened at run time.
constexpr char kPerfClientLibrary[] = "libvnx-perfd-client_system.so";
constexpr char kFeatureLibrary[] = "libfeatgate_system.so";

// Hints and queries of the performance service.
constexpr int kScalingHint = 0x1046;
constexpr int kRefreshRateHint = 0x1094;
constexpr int kAppTypeQuery = 0x1601;

/** The answer to kAppTypeQuery for an application that the library acts on. */
constexpr int32_t kTargetAppType = 2;
constexpr int32_t kUnknownAppType = -1;

// Channels of scaling requests. Each has a worker of its own.
constexpr int kSfChannel = 0;  // compositor: jank boost and its release
constexpr int kQbChannel = 1;  // producer: DOWN and UP
constexpr char kSfChannelName[] = "SF";
constexpr char kQbChannelName[] = "QB";

constexpr uint32_t kNoDirection = 0;
constexpr uint32_t kDirectionDown = 1;
constexpr uint32_t kDirectionUp = 2;
constexpr uint32_t kNoBoost = 0;
constexpr uint32_t kBoost = 2;
constexpr float kJankBoostScale = 10.0f;

// Durations of hints, in milliseconds.
constexpr int32_t kNoDuration = -1;  // nothing is sent
constexpr int32_t kReleaseDuration = 0;
constexpr int32_t kRefreshRateDuration = 0;  // in force until it is released
constexpr int32_t kSfDuration = 2000;

/** Returns the duration of a "QB" hint in a frame-rate mode. */
constexpr int32_t qbDurationOf(int32_t mode) {
    switch (mode) {
        case kMode60Fps:
            return 19;
        case kMode90Fps:
            return 13;
        case kMode120Fps:
            return 10;
        default:
            return kNoDuration;
    }
}

// The type word of a scaling hint: bits 0 to 15 hold the scale in thousandths, bits 16 to 18 the
// direction, bits 19 to 21 the boost level; bit 22 is set on the "QB" channel.
constexpr uint32_t kScaleMask = 0xffff;
constexpr unsigned kDirectionShift = 16;
constexpr unsigned kBoostLevelShift = 19;
constexpr uint32_t kFieldMask = 0x7;
constexpr uint32_t kQbChannelBit = 1u << 22;

/** Truncates toward zero. Negative values and NaN give 0, too large ones UINT32_MAX. */
constexpr uint32_t saturatingUint32(float value) {
    if (!(value > 0.0f)) return 0;
    if (value >= 4294967296.0f) return UINT32_MAX;
    return static_cast<uint32_t>(value);
}

/** Direction and boost level are not masked: values above 7 run into the next field. */
constexpr uint32_t packTypeWord(float scale, uint32_t direction, uint32_t boostLevel) {
    return (saturatingUint32(scale * 1000.0f) & kScaleMask) | direction << kDirectionShift |
           boostLevel << kBoostLevelShift;
}

struct TypeWord {
    double scale;
    uint32_t direction;
    uint32_t boostLevel;
    bool isQb;
};

constexpr TypeWord unpackTypeWord(uint32_t word) {
    return {(word & kScaleMask) / 1000.0, word >> kDirectionShift & kFieldMask,
            word >> kBoostLevelShift & kFieldMask, (word & kQbChannelBit) != 0};
}

// Features of the feature switch.
constexpr int kJankBoostFeature = 4;
constexpr int kEnergyScalingFeature = 5;

// Settings. All but the first are read through the performance service.
constexpr char kSmoothMotionProperty[] = "vendor.display.use_smooth_motion";
constexpr char kFpsSwitchProperty[] = "vendor.perf.fps_switch.enable";
constexpr char kJankBoostProperty[] = "vendor.perf.jr10.enable";
constexpr char kScalingProperty[] = "vendor.perf.pfar.enable";
constexpr char kDebugProperty[] = "vendor.perf.brevold.debug";
constexpr char kScalingDownProperty[] = "vendor.perf.pfar.down.enable";
constexpr char kDebugLayersProperty[] = "vendor.perf.brevold.debug.layers";

/** The start of the debug output that reports a measuring window, with the frame-rate mode. */
#define BREVOLD_WINDOW_TAG "[FM]gMode:%d"

/** The frame rates of each frame-rate mode. */
constexpr const char* kModeLabels[] = {"27 fps and less",         "27 to 32 fps",
                                       "47 to 62 fps (60 Hz)",    "77 to 92 fps (90 Hz)",
                                       "107 to 122 fps (120 Hz)", "unclassified or idle"};

}  // namespace android
