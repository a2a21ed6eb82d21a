#include "replay/player.h"

#include <algorithm>
#include <cstdio>

#include "base/progress.h"
#include "brevold/brevold.h"
#include "brevold/frame_rate.h"
#include "brevold/protocol.h"
#include "brevold/settings.h"
#include "host/device_profile.h"
#include "host/driver.h"
#include "host/workers.h"

namespace brevold::replay {

namespace {

using trace::Timeline;
using trace::TimelineEvent;

constexpr int64_t kNoFrameYet = -1;

class Player {
  public:
    Player(const Timeline& timeline, const PlayOptions& options, host::Driver& driver)
          : mTimeline(timeline), mDriver(driver) {
        mRecording.options = options;
        if (!options.hasMarks) host::setEnabledTraceTags(0);
        mDepths.resize(timeline.layers.size());
        for (size_t i = 0; i < timeline.layers.size(); ++i) {
            LayerFrameInfo info = {};
            info.layerKeyA = info.layerKeyB = static_cast<int32_t>(i + 1);
            info.layerName = timeline.layers[i].name;
            info.lastQbTime = kNoFrameYet;
            mFrames.push_back(info);
        }
        setFocus(timeline.focusedLayer);
    }

    Recording play() {
        mRecording.isAnyFeatureOn = mDriver.init(mTimeline.startNs);
        mReportsModes = (host::isFeatureAllowed(android::kJankBoostFeature) ||
                         host::isFeatureAllowed(android::kEnergyScalingFeature)) &&
                        android::isOn(host::profileProperty(android::kDebugProperty, "0").c_str());
        const std::string list = host::profileProperty(android::kDebugLayersProperty, "NONE");
        if (android::isLayerList(list)) android::splitLayerList(list, mIgnoredLayers);
        setMode(mTimeline.startNs, android::kModeUnclassified);
        Progress progress("replaying", static_cast<int64_t>(mTimeline.events.size()));
        int64_t played = 0;
        for (const TimelineEvent& event : mTimeline.events) {
            progress.update(played++);
            apply(event);
            takeOutput(event.tid);
        }
        for (const host::StartedThread& thread : host::startedThreads())
            mRecording.threads.push_back(thread.name);
        return std::move(mRecording);
    }

  private:
    void apply(const TimelineEvent& event) {
        switch (event.kind) {
            case TimelineEvent::Kind::Period:
                mPeriodNs = event.periodNs;
                break;
            case TimelineEvent::Kind::Frame:
                changeDepth(event);
                reportFrame(event);
                break;
            case TimelineEvent::Kind::Depth:
                changeDepth(event);
                break;
            case TimelineEvent::Kind::CompositionBegin:
                beginComposition(event.timeNs);
                break;
            case TimelineEvent::Kind::CompositionEnd:
                endComposition(event.timeNs);
                break;
            case TimelineEvent::Kind::Focus:
                setFocus(static_cast<size_t>(event.layer));
                break;
            case TimelineEvent::Kind::Vsync:
                if (mDriver.vsync(event.timeNs, focusedDepth(), mPeriodNs)) {
                    mRecording.verdictTimesNs.push_back(event.timeNs);
                }
                break;
        }
    }

    void setFocus(size_t layer) {
        mFocus = layer;
        for (size_t i = 0; i < mFrames.size(); ++i) {
            mFrames[i].skipLayerCheck = i == layer ? 0 : 1;
            mFrames[i].peerLayerName = mTimeline.layers[layer].name;
        }
        mPeakDepth = focusedDepth();
    }

    void changeDepth(const TimelineEvent& event) {
        mDepths[static_cast<size_t>(event.layer)] = event.depth;
        mPeakDepth = std::max(mPeakDepth, focusedDepth());
    }

    void reportFrame(const TimelineEvent& event) {
        const auto layer = static_cast<size_t>(event.layer);
        LayerFrameInfo& info = mFrames[layer];
        info.qbTime = event.timeNs;
        info.sfTime = mLastCompositionNs;
        info.lastMaxQueuedFrames = event.depth;
        info.refreshPeriod = mPeriodNs;
        // The library resets its mode by the same rule, but does not report it.
        const android::LayerIdentity reported = {info.layerName, info.layerKeyA, info.layerKeyB};
        if (info.skipLayerCheck == 0 && !isIgnored(info.layerName) &&
            !android::isSameLayer(reported, mCurrentLayer)) {
            mCurrentLayer = reported;
            setMode(event.timeNs, android::kModeUnclassified);
        }
        mDriver.frame(event.timeNs, info);
        info.lastQbTime = event.timeNs;
    }

    void beginComposition(int64_t timeNs) {
        if (mLastCompositionNs != 0 && android::isIdleGap(timeNs - mLastCompositionNs)) {
            setMode(timeNs, android::kModeUnclassified);
        }
        mLastCompositionNs = timeNs;
        mDriver.beginComposition(timeNs);
    }

    void endComposition(int64_t timeNs) {
        const bool isPeak = mRecording.options.boostDepth == BoostDepth::Found;
        mDriver.endComposition(timeNs, isPeak ? mPeakDepth : focusedDepth());
        mPeakDepth = focusedDepth();
    }

    bool isIgnored(const std::string& layer) const {
        return std::find(mIgnoredLayers.begin(), mIgnoredLayers.end(), layer) !=
               mIgnoredLayers.end();
    }

    int32_t focusedDepth() const { return mDepths[mFocus]; }

    void setMode(int64_t timeNs, int32_t mode) {
        std::vector<ModeChange>& modes = mRecording.modes;
        if (mReportsModes && (modes.empty() || modes.back().mode != mode)) {
            modes.push_back({timeNs, mode});
        }
    }

    void takeOutput(int32_t callerTid) {
        for (const host::ServiceCall& call : mDriver.takeServiceCalls()) {
            if (call.kind == host::ServiceCall::Kind::Hint) {
                mRecording.hints.push_back(host::decodeHint(call));
            }
        }
        for (host::LogLine& line : host::takeLog()) {
            int32_t mode = 0;
            if (sscanf(line.text.c_str(), "[FM]gMode:%d", &mode) == 1) setMode(line.timeNs, mode);
            mRecording.log.push_back(std::move(line));
        }
        for (host::TraceMark& mark : host::takeTraceMarks()) {
            mRecording.marks.push_back({std::move(mark), callerTid});
        }
    }

    const Timeline& mTimeline;
    host::Driver& mDriver;
    Recording mRecording;
    std::vector<int32_t> mDepths;
    std::vector<LayerFrameInfo> mFrames;
    size_t mFocus = 0;
    std::vector<std::string> mIgnoredLayers;
    android::LayerIdentity mCurrentLayer = {};
    int32_t mPeakDepth = 0;
    int64_t mPeriodNs = 0;
    int64_t mLastCompositionNs = 0;
    bool mReportsModes = false;
};

}  // namespace

Recording play(const Timeline& timeline, const PlayOptions& options) {
    host::Driver driver(host::Workers::Stepped);
    return Player(timeline, options, driver).play();
}

}  // namespace brevold::replay
