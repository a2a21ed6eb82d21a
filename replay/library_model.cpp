#include "replay/library_model.h"

#include <algorithm>

#include "brevold/headroom.h"
#include "replay/window_line.h"

namespace brevold::replay {

namespace {

constexpr int64_t kNoPreviousFrame = -1;

float upScale(const LayerFrameInfo& info) {
    const int64_t budgetNs = android::frameBudgetOf(info.refreshPeriod);
    const int64_t headroomNs = budgetNs - (info.qbTime - info.sfTime);
    return android::ratio(info.qbTime - info.lastQbTime, headroomNs + budgetNs);
}

}  // namespace

FrameOutcome LibraryModel::frame(const LayerFrameInfo& info) {
    trackLayer(info);
    if (!mSwitches.energyScaling) return FrameOutcome::ScalingOff;
    if (info.lastQbTime == kNoPreviousFrame) return FrameOutcome::FirstFrame;
    const FrameOutcome outcome = decide(info);
    mLastStampNs = info.sfTime;
    return outcome;
}

void LibraryModel::trackLayer(const LayerFrameInfo& info) {
    const std::vector<std::string>& ignored = mSwitches.debugLayers;
    if (info.skipLayerCheck != 0 ||
        std::find(ignored.begin(), ignored.end(), info.layerName) != ignored.end()) {
        return;
    }
    mIsTargetApp = mAppType == android::kTargetAppType;
    if (android::isSameLayer({info.layerName, info.layerKeyA, info.layerKeyB},
                             {mLayer, mLayerKeyA, mLayerKeyB})) {
        return;
    }
    mLayer = info.layerName;
    mLayerKeyA = info.layerKeyA;
    mLayerKeyB = info.layerKeyB;
    mMode = android::kModeUnclassified;
}

FrameOutcome LibraryModel::decide(const LayerFrameInfo& info) const {
    if (!mIsTargetApp) return FrameOutcome::NoTargetApp;
    if (info.peerLayerName != info.layerName) return FrameOutcome::PeerDiffers;
    if (mLastStampNs == 0) return FrameOutcome::NoStamp;
    if (info.lastMaxQueuedFrames < 1) return FrameOutcome::EmptyQueue;
    const android::RefreshBand* const band = android::refreshBandOf(info.refreshPeriod);
    if (band == nullptr) return FrameOutcome::UnsupportedPeriod;
    if (!mode()) return FrameOutcome::UnknownMode;
    if (mMode == android::kModeUnclassified) return FrameOutcome::UnclassifiedMode;
    if (mMode != band->mode) return FrameOutcome::OtherMode;
    if (info.lastMaxQueuedFrames >= android::kMinDepthForDown) {
        return mSwitches.scalingDown ? FrameOutcome::AskedDown : FrameOutcome::DownOff;
    }
    return android::isUpDue(upScale(info)) ? FrameOutcome::AskedUp : FrameOutcome::ScaleNotAboveOne;
}

void LibraryModel::refresh(int64_t timeNs) {
    if (mLastRefreshNs != 0 && android::isIdleGap(timeNs - mLastRefreshNs)) {
        mMode = android::kModeUnclassified;
    }
    mLastRefreshNs = timeNs;
}

void LibraryModel::readLog(const std::string& text) {
    mMode = modeOfWindowLine(text).value_or(mMode);
}

std::optional<int32_t> LibraryModel::mode() const {
    if (!mSwitches.debug) return std::nullopt;
    return mMode;
}

}  // namespace brevold::replay
