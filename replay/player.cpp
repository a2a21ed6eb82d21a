#include "replay/player.h"

#include <algorithm>

#include "base/progress.h"
#include "brevold/brevold.h"
#include "host/driver.h"
#include "host/workers.h"
#include "replay/library_model.h"

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
        recordMode(mTimeline.startNs);
        Progress progress("replaying", static_cast<int64_t>(mTimeline.events.size()));
        int64_t played = 0;
        for (const TimelineEvent& event : mTimeline.events) {
            progress.update(played++);
            apply(event);
            takeOutput(event.tid);
            recordMode(event.timeNs);
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
        const size_t hintsBefore = mRecording.hints.size();
        mDriver.frame(event.timeNs, info);
        takeServiceCalls();
        const FrameOutcome outcome = mModel.frame(info);
        if (layer == mFocus) {
            mRecording.frames.push_back({event.timeNs, withHints(outcome, hintsBefore)});
        }
        info.lastQbTime = event.timeNs;
    }

    /** Returns the request that the library sent if the outcome depends on an unknown mode. */
    FrameOutcome withHints(FrameOutcome outcome, size_t hintsBefore) const {
        if (outcome != FrameOutcome::UnknownMode) return outcome;
        for (size_t i = hintsBefore; i < mRecording.hints.size(); ++i) {
            if (mRecording.hints[i].kind == host::HintKind::Down) return FrameOutcome::AskedDown;
            if (mRecording.hints[i].kind == host::HintKind::Up) return FrameOutcome::AskedUp;
        }
        return outcome;
    }

    void beginComposition(int64_t timeNs) {
        mLastCompositionNs = timeNs;
        mDriver.beginComposition(timeNs);
        mModel.refresh(timeNs);
    }

    void endComposition(int64_t timeNs) {
        const bool isPeak = mRecording.options.boostDepth == BoostDepth::Found;
        mDriver.endComposition(timeNs, isPeak ? mPeakDepth : focusedDepth());
        mPeakDepth = focusedDepth();
    }

    int32_t focusedDepth() const { return mDepths[mFocus]; }

    void recordMode(int64_t timeNs) {
        const std::optional<int32_t> mode = mModel.mode();
        std::vector<ModeChange>& modes = mRecording.modes;
        if (mode && (modes.empty() || modes.back().mode != *mode)) {
            modes.push_back({timeNs, *mode});
        }
    }

    void takeServiceCalls() {
        for (const host::ServiceCall& call : mDriver.takeServiceCalls()) {
            if (call.kind == host::ServiceCall::Kind::Hint) {
                mRecording.hints.push_back(host::decodeHint(call));
                mRecording.hintLayers.push_back(static_cast<int32_t>(mFocus));
            } else if (call.kind == host::ServiceCall::Kind::Query) {
                mModel.setAppType(call.result);
            }
        }
    }

    void takeOutput(int32_t callerTid) {
        takeServiceCalls();
        for (host::LogLine& line : host::takeLog()) {
            mModel.readLog(line.text);
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
    int32_t mPeakDepth = 0;
    int64_t mPeriodNs = 0;
    int64_t mLastCompositionNs = 0;
    LibraryModel mModel{readSwitches()};
};

}  // namespace

Recording play(const Timeline& timeline, const PlayOptions& options) {
    host::Driver driver(host::Workers::Stepped);
    return Player(timeline, options, driver).play();
}

}  // namespace brevold::replay
