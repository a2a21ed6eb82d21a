#include "sim/library.h"

#include <cstdio>

#include "brevold/frame_rate.h"

namespace brevold::sim {

namespace {

constexpr int64_t kNoFrameYet = -1;

}  // namespace

Library::Library(int64_t nowNs)
      : mDriver(host::Workers::Stepped), mMode(android::kModeUnclassified) {
    host::setEnabledTraceTags(0);
    mFrame.layerKeyA = mFrame.layerKeyB = 1;
    mFrame.layerName = mFrame.peerLayerName = kLayerName;
    mFrame.lastQbTime = kNoFrameYet;
    mDriver.init(nowNs);
}

void Library::reportFrame(int64_t nowNs, int32_t depth, int64_t periodNs) {
    mFrame.qbTime = nowNs;
    mFrame.sfTime = mLastCompositionNs;
    mFrame.lastMaxQueuedFrames = depth;
    mFrame.refreshPeriod = periodNs;
    mDriver.frame(nowNs, mFrame);
    mFrame.lastQbTime = nowNs;
}

void Library::beginComposition(int64_t nowNs) {
    if (android::isIdleGap(nowNs - mLastCompositionNs)) mMode = android::kModeUnclassified;
    mLastCompositionNs = nowNs;
    mDriver.beginComposition(nowNs);
    readModes();
}

void Library::endComposition(int64_t nowNs, int32_t depth) {
    mDriver.endComposition(nowNs, depth);
}

void Library::vsync(int64_t nowNs, int32_t depth, int64_t periodNs) {
    mDriver.vsync(nowNs, depth, periodNs);
}

std::vector<host::Hint> Library::takeHints() {
    std::vector<host::Hint> hints;
    for (const host::ServiceCall& call : mDriver.takeServiceCalls()) {
        if (call.kind == host::ServiceCall::Kind::Hint) hints.push_back(host::decodeHint(call));
    }
    return hints;
}

std::optional<int32_t> Library::mode() const {
    if (!mReportsModes) return {};
    return mMode;
}

void Library::readModes() {
    for (const host::LogLine& line : host::takeLog()) {
        if (sscanf(line.text.c_str(), "[FM]gMode:%d", &mMode) == 1) mReportsModes = true;
    }
}

}  // namespace brevold::sim
