#pragma once

#include <cstdint>

/**
 * Words exchanged with the performance service and the settings, shared by the library and the
 * tools that answer or decode its requests.
 */
namespace android {

// Hints and queries of the performance service.
constexpr int kScalingHint = 0x1046;
constexpr int kRefreshRateHint = 0x1094;
constexpr int kAppTypeQuery = 0x1601;

/** The answer to kAppTypeQuery for an application that the library acts on. */
constexpr int32_t kTargetAppType = 2;

// Channels of scaling requests, each served by a worker of its own.
constexpr int kSfChannel = 0;  // compositor side: jank boost and its release
constexpr int kQbChannel = 1;  // producer side: DOWN and UP
constexpr char kSfChannelName[] = "SF";
constexpr char kQbChannelName[] = "QB";

constexpr uint32_t kDirectionDown = 1;
constexpr uint32_t kDirectionUp = 2;
constexpr uint32_t kNoBoost = 0;
constexpr uint32_t kBoost = 2;
constexpr float kJankBoostScale = 10.0f;

// Durations of scaling hints, in milliseconds.
constexpr int32_t kNoDuration = -1;  // nothing is sent
constexpr int32_t kReleaseDuration = 0;
constexpr int32_t kSfDuration = 2000;

/** Duration of a "QB" hint in a frame-rate mode; kNoDuration in modes without a band. */
constexpr int32_t qbDurationOf(int32_t mode) {
    switch (mode) {
        case 2:
            return 19;
        case 3:
            return 13;
        case 4:
            return 10;
        default:
            return kNoDuration;
    }
}

// The type word of a scaling hint: bits 0 to 15 hold the scale in thousandths, from bit 16 on the
// direction, from bit 19 on the boost level; bit 22 is set on the "QB" channel.
constexpr uint32_t kScaleMask = 0xffff;
constexpr unsigned kDirectionShift = 16;
constexpr unsigned kBoostLevelShift = 19;
constexpr uint32_t kFieldMask = 0x7;
constexpr uint32_t kQbChannelBit = 1u << 22;

/** Truncates toward zero; negative and NaN give 0, too large gives UINT32_MAX, on any processor. */
constexpr uint32_t saturatingUint32(float value) {
    if (!(value > 0.0f)) return 0;
    if (value >= 4294967296.0f) return UINT32_MAX;
    return static_cast<uint32_t>(value);
}

/** Direction and boost level are not masked: a value of more than 3 bits overlaps its neighbour. */
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

/** Frame rates of each frame-rate mode. */
constexpr const char* kModeLabels[] = {"27 fps and less",         "27 to 32 fps",
                                       "47 to 62 fps (60 Hz)",    "77 to 92 fps (90 Hz)",
                                       "107 to 122 fps (120 Hz)", "unclassified or idle"};

}  // namespace android
