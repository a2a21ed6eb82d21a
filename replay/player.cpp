#include "replay/player.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "brevold/brevold.h"
#include "brevold/frame_rate.h"
#include "host/device_profile.h"
#include "replay/progress.h"

namespace brevold::replay {

namespace {

constexpr int64_t kNoFrameYet = -1;

void* openLibrary(const std::string& path) {
    void* const handle = dlopen(path.c_str(), RTLD_NOW);
    if (handle == nullptr) throw std::runtime_error(dlerror());
    return handle;
}

template <typename Fn>
Fn find(void* library, const char* symbol) {
    const auto function = reinterpret_cast<Fn>(dlsym(library, symbol));
    if (function == nullptr) throw std::runtime_error(dlerror());
    return function;
}

/** The entry points by symbol look-up, as a compositor finds them. */
struct Library {
    explicit Library(void* handle)
          : init(find<decltype(init)>(handle, "brevoldInit")),
            onFrameAvailable(find<decltype(onFrameAvailable)>(handle, "brevoldOnFrameAvailable")),
            monitor(find<decltype(monitor)>(handle, "brevoldMonitor")),
            scaling(find<decltype(scaling)>(handle, "brevoldScaling")),
            refresh(find<decltype(refresh)>(handle, "brevoldRefresh")) {}

    decltype(&brevoldInit) init;
    decltype(&brevoldOnFrameAvailable) onFrameAvailable;
    decltype(&brevoldMonitor) monitor;
    decltype(&brevoldScaling) scaling;
    decltype(&brevoldRefresh) refresh;
};

class Player {
  public:
    Player(const Timeline& timeline, const Library& library, Recording& recording)
          : mTimeline(timeline), mLibrary(library), mRecording(recording) {
        const std::string& focusedName = timeline.layers[timeline.focusedLayer].name;
        mDepths.resize(timeline.layers.size());
        for (size_t i = 0; i < timeline.layers.size(); ++i) {
            LayerFrameInfo info = {};
            info.skipLayerCheck = i == timeline.focusedLayer ? 0 : 1;
            info.layerKeyA = info.layerKeyB = static_cast<int32_t>(i + 1);
            info.layerName = timeline.layers[i].name;
            info.peerLayerName = focusedName;
            info.lastQbTime = kNoFrameYet;
            mFrames.push_back(info);
        }
    }

    void play() {
        host::setTimeNs(mTimeline.startNs);
        mRecording.isAnyFeatureOn = mLibrary.init();
        mReportsModes = (host::isFeatureAllowed(4) || host::isFeatureAllowed(5)) &&
                        atoi(host::profileProperty("vendor.perf.brevold.debug", "0").c_str()) == 1;
        setMode(mTimeline.startNs, android::kModeUnclassified);
        host::settle();
        Progress progress("replaying", static_cast<int64_t>(mTimeline.events.size()));
        int64_t played = 0;
        for (const TimelineEvent& event : mTimeline.events) {
            progress.update(played++);
            host::setTimeNs(event.timeNs);
            apply(event);
            host::settle();
            takeOutput();
        }
        for (const host::StartedThread& thread : host::startedThreads())
            mRecording.threads.push_back(thread.name);
    }

  private:
    void apply(const TimelineEvent& event) {
        switch (event.kind) {
            case TimelineEvent::Kind::Period:
                mPeriodNs = event.periodNs;
                break;
            case TimelineEvent::Kind::Depth:
                changeDepth(event);
                break;
            case TimelineEvent::Kind::CompositionBegin:
                beginComposition(event.timeNs);
                break;
            case TimelineEvent::Kind::CompositionEnd:
                endComposition();
                break;
            case TimelineEvent::Kind::Vsync:
                if (mLibrary.monitor(focusedDepth(), mPeriodNs) != 0) {
                    mRecording.verdictTimesNs.push_back(event.timeNs);
                }
                break;
        }
    }

    void changeDepth(const TimelineEvent& event) {
        const auto layer = static_cast<size_t>(event.layer);
        const bool isFrame = event.depth > mDepths[layer];
        mDepths[layer] = event.depth;
        mPeakDepth = std::max(mPeakDepth, focusedDepth());
        if (!isFrame) return;

        LayerFrameInfo& info = mFrames[layer];
        info.qbTime = event.timeNs;
        info.sfTime = mLastCompositionNs;
        info.lastMaxQueuedFrames = event.depth;
        info.refreshPeriod = mPeriodNs;
        // The library forgets the mode with the first frame of the layer that it tracks.
        if (layer == mTimeline.focusedLayer && info.lastQbTime == kNoFrameYet) {
            setMode(event.timeNs, android::kModeUnclassified);
        }
        mLibrary.onFrameAvailable(&info);
        info.lastQbTime = event.timeNs;
    }

    void beginComposition(int64_t timeNs) {
        if (mLastCompositionNs != 0 && timeNs - mLastCompositionNs >= android::kIdleGapNs) {
            setMode(timeNs, android::kModeUnclassified);
        }
        mLastCompositionNs = timeNs;
        mLibrary.refresh();
    }

    void endComposition() {
        // Most releases latch before the section that tells of a composition, so that the depth at
        // its end is not what it found: the frames that stood queued since the one before are.
        mLibrary.scaling(mPeakDepth, 0);
        mPeakDepth = focusedDepth();
    }

    int32_t focusedDepth() const { return mDepths[mTimeline.focusedLayer]; }

    void setMode(int64_t timeNs, int32_t mode) {
        std::vector<ModeChange>& modes = mRecording.modes;
        if (mReportsModes && (modes.empty() || modes.back().mode != mode)) {
            modes.push_back({timeNs, mode});
        }
    }

    void takeOutput() {
        for (host::LogLine& line : host::takeLog()) {
            int32_t mode = 0;
            if (sscanf(line.text.c_str(), "[FM]gMode:%d", &mode) == 1) setMode(line.timeNs, mode);
            mRecording.log.push_back(std::move(line));
        }
        for (host::TraceMark& mark : host::takeTraceMarks()) {
            mRecording.traceMarks.push_back(std::move(mark));
        }
    }

    const Timeline& mTimeline;
    const Library& mLibrary;
    Recording& mRecording;
    std::vector<int32_t> mDepths;
    std::vector<LayerFrameInfo> mFrames;
    int32_t mPeakDepth = 0;
    int64_t mPeriodNs = 0;
    int64_t mLastCompositionNs = 0;
    bool mReportsModes = false;
};

void recordHint(const host::ServiceCall& call, void* recording) {
    if (call.kind != host::ServiceCall::Kind::Hint) return;
    static_cast<Recording*>(recording)->hints.push_back(decodeHint(call));
}

}  // namespace

Recording play(const Timeline& timeline) {
    Recording recording;
    const std::string folder =
            std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + "/";
    // Once open, the run-time libraries are what the library's own dlopen finds by name.
    void* const client = openLibrary(folder + "standins/libvnx-perfd-client_system.so");
    openLibrary(folder + "standins/libfeatgate_system.so");
    const Library library(openLibrary(folder + "libbrevold.so"));
    const auto setListener =
            find<decltype(&host::perfd_set_listener)>(client, host::kSetServiceListener);
    setListener(recordHint, &recording);
    Player(timeline, library, recording).play();
    setListener(nullptr, nullptr);
    return recording;
}

}  // namespace brevold::replay
