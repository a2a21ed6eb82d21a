#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "brevold/brevold.h"
#include "brevold/frame_rate.h"
#include "brevold/protocol.h"
#include "replay/frame_outcome.h"
#include "replay/library_switches.h"

namespace brevold::replay {

/**
 * Repeats the library's decisions on frames, because the library does not report why it makes no
 * request. Call each function after the entry point that it belongs to.
 */
class LibraryModel {
  public:
    explicit LibraryModel(LibrarySwitches switches) : mSwitches(std::move(switches)) {}

    /** The service answered a query for the application type. Call it before frame(). */
    void setAppType(int32_t type) { mAppType = type; }

    /** brevoldOnFrameAvailable was called. */
    FrameOutcome frame(const LayerFrameInfo& info);

    /** brevoldRefresh was called. Call it before readLog(). */
    void refresh(int64_t timeNs);

    /** The library logged a line. */
    void readLog(const std::string& text);

    /** Returns the frame-rate mode, or nothing if the library does not report it. */
    std::optional<int32_t> mode() const;

  private:
    void trackLayer(const LayerFrameInfo& info);
    FrameOutcome decide(const LayerFrameInfo& info) const;

    const LibrarySwitches mSwitches;
    int32_t mAppType = android::kUnknownAppType;
    bool mIsTargetApp = false;
    std::string mLayer;
    int32_t mLayerKeyA = 0;
    int32_t mLayerKeyB = 0;
    int32_t mMode = android::kModeUnclassified;
    int64_t mLastStampNs = 0;
    int64_t mLastRefreshNs = 0;
};

}  // namespace brevold::replay
