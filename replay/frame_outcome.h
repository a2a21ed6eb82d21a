#pragma once

#include <cstdint>

namespace brevold::replay {

/**
 * The library's answer to a frame: a request, or the first of its tests that stopped the frame. The
 * tests are in their order.
 */
enum class FrameOutcome : uint8_t {
    AskedDown,
    AskedUp,
    ScalingOff,  // energy scaling is off
    FirstFrame,  // the layer has no previous frame
    NoTargetApp,
    PeerDiffers,        // peerLayerName is not layerName
    NoStamp,            // nothing was composed when the previous frame was queued
    EmptyQueue,         // no frame is queued
    UnsupportedPeriod,  // the refresh period is not one of 60, 90 or 120 Hz
    UnknownMode,        // the library does not report modes, and sent no request
    UnclassifiedMode,
    OtherMode,         // the frame-rate mode is not that of the refresh rate
    DownOff,           // two or more frames are queued, but DOWN requests are off
    ScaleNotAboveOne,  // one frame is queued, and the application keeps up
};
constexpr FrameOutcome kFrameOutcomes[] = {
        FrameOutcome::AskedDown,   FrameOutcome::AskedUp,          FrameOutcome::ScalingOff,
        FrameOutcome::FirstFrame,  FrameOutcome::NoTargetApp,      FrameOutcome::PeerDiffers,
        FrameOutcome::NoStamp,     FrameOutcome::EmptyQueue,       FrameOutcome::UnsupportedPeriod,
        FrameOutcome::UnknownMode, FrameOutcome::UnclassifiedMode, FrameOutcome::OtherMode,
        FrameOutcome::DownOff,     FrameOutcome::ScaleNotAboveOne,
};

constexpr bool isRequest(FrameOutcome outcome) {
    return outcome == FrameOutcome::AskedDown || outcome == FrameOutcome::AskedUp;
}

}  // namespace brevold::replay
