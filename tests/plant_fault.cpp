// plant_fault FAULT PROFILE TRACE OUTPUT: writes a trace with the marks that the library leaves if
// the compositor calls it wrongly, or if its workers fail.

#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>

#include "host/device_profile.h"
#include "host/driver.h"
#include "host/workers.h"
#include "report/marked_trace.h"
#include "trace/read_timeline.h"

namespace {

using namespace brevold;
using trace::TimelineEvent;

constexpr int64_t kPeriod90Ns = 11'111'111;
constexpr int64_t kDelayNs = 40'000'000;

/** The stamps that a compositor may report for a frame. */
struct Stamps {
    int64_t latest = 0;    // the beginning of the latest composition
    int64_t previous = 0;  // of the one before
    int64_t vsync = 0;
    int64_t zero = 0;
};

/** How a compositor calls the library. */
struct Calls {
    int32_t addedDepth = 0;
    bool countsBeforeLatch = false;
    bool countsBoostsBeforeLatch = false;
    int64_t Stamps::*stamp = &Stamps::latest;
    int64_t ticksPerCall = 1;
    int64_t framesPerDrop = 0;
    int64_t framesPerRepeat = 0;
    int64_t periodNs = 0;
    bool focusesSecondLayer = false;
};

class Compositor {
  public:
    Compositor(const trace::Timeline& timeline, const Calls& calls)
          : mTimeline(timeline), mCalls(calls), mQueues(timeline.layers.size()) {
        if (calls.focusesSecondLayer && timeline.layers.size() < 2) {
            throw std::runtime_error("the trace needs two layers");
        }
        mFocus = calls.focusesSecondLayer ? 1 - timeline.focusedLayer : timeline.focusedLayer;
        for (size_t i = 0; i < mQueues.size(); ++i) {
            LayerFrameInfo& info = mQueues[i].info;
            info.layerName = timeline.layers[i].name;
            info.peerLayerName = timeline.layers[mFocus].name;
            info.skipLayerCheck = i == mFocus ? 0 : 1;
            info.lastQbTime = -1;
        }
    }

    replay::Recording run() {
        mDriver.init(mTimeline.startNs);
        for (const TimelineEvent& event : mTimeline.events) {
            call(event);
            mDriver.takeServiceCalls();
            for (host::TraceMark& mark : host::takeTraceMarks())
                mRecording.marks.push_back({std::move(mark), event.tid});
        }
        for (const host::StartedThread& thread : host::startedThreads())
            mRecording.threads.push_back(thread.name);
        return std::move(mRecording);
    }

  private:
    struct Queue {
        LayerFrameInfo info = {};
        int32_t depth = 0;
        int32_t counted = 0;  // before the latest latch
        int32_t found = 0;    // maximum since the previous composition
        bool isLatched = false;
    };

    void call(const TimelineEvent& event) {
        Queue& queue = mQueues[static_cast<size_t>(event.layer)];
        switch (event.kind) {
            case TimelineEvent::Kind::Period:
                mPeriodNs = mCalls.periodNs != 0 ? mCalls.periodNs : event.periodNs;
                break;
            case TimelineEvent::Kind::Frame:
                queue.depth = event.depth;
                queue.found = std::max(queue.found, queue.depth);
                ++queue.counted;
                report(event.timeNs, queue);
                break;
            case TimelineEvent::Kind::Depth:
                if (!queue.isLatched) queue.counted = queue.depth;
                queue.isLatched = true;
                queue.depth = event.depth;
                break;
            case TimelineEvent::Kind::CompositionBegin:
                mStamps.previous = mStamps.latest;
                mStamps.latest = event.timeNs;
                if (mTicks++ % mCalls.ticksPerCall == 0) mDriver.beginComposition(event.timeNs);
                break;
            case TimelineEvent::Kind::CompositionEnd:
                mDriver.endComposition(event.timeNs, mCalls.countsBoostsBeforeLatch
                                                             ? mQueues[mFocus].found
                                                             : mQueues[mFocus].depth);
                for (Queue& each : mQueues) {
                    if (!each.isLatched) each.counted = each.depth;
                    each.isLatched = false;
                    each.found = each.depth;
                }
                break;
            case TimelineEvent::Kind::Vsync:
                mStamps.vsync = event.timeNs;
                break;
            case TimelineEvent::Kind::Focus:
                break;
        }
    }

    void report(int64_t timeNs, Queue& queue) {
        ++mFrames;
        if (mCalls.framesPerDrop != 0 && mFrames % mCalls.framesPerDrop == 0) return;
        LayerFrameInfo& info = queue.info;
        info.qbTime = timeNs;
        info.sfTime = mStamps.*mCalls.stamp;
        info.refreshPeriod = mPeriodNs;
        info.lastMaxQueuedFrames =
                (mCalls.countsBeforeLatch ? queue.counted : queue.depth) + mCalls.addedDepth;
        mDriver.frame(timeNs, info);
        info.lastQbTime = timeNs;
        if (mCalls.framesPerRepeat != 0 && mFrames % mCalls.framesPerRepeat == 0) {
            mDriver.frame(timeNs, info);
        }
    }

    const trace::Timeline& mTimeline;
    const Calls mCalls;
    host::Driver mDriver{host::Workers::Stepped};
    std::vector<Queue> mQueues;
    size_t mFocus;
    int64_t mPeriodNs = 0;
    Stamps mStamps;
    int64_t mTicks = 0;
    int64_t mFrames = 0;
    replay::Recording mRecording;
};

/** A change of the marks that the workers leave. */
using ChangeMarks = std::function<void(std::vector<replay::RecordedMark>&)>;

struct Fault {
    std::function<void(Calls&)> plant;
    ChangeMarks change;
};

/** Sections of workers have no sections inside. */
template <typename Change>
ChangeMarks forSections(const std::string& label, Change change) {
    return [=](std::vector<replay::RecordedMark>& marks) {
        bool isInside = false;
        int64_t count = 0;
        std::vector<replay::RecordedMark> changed;
        for (replay::RecordedMark& mark : marks) {
            if (mark.mark.isBegin) isInside = mark.mark.label.rfind(label, 0) == 0;
            if (isInside && mark.mark.isBegin) ++count;
            if (!isInside || mark.mark.thread < 0 || change(mark.mark, count)) {
                changed.push_back(std::move(mark));
            }
        }
        marks = std::move(changed);
    };
}

bool delay(host::TraceMark& mark, int64_t /*count*/) {
    mark.timeNs += kDelayNs;
    return true;
}

const std::map<std::string, Fault> kFaults = {
        {"none", {}},
        {"depth-plus-one", {[](Calls& calls) { calls.addedDepth = 1; }, {}}},
        {"depth-minus-one", {[](Calls& calls) { calls.addedDepth = -1; }, {}}},
        {"depth-before-latch", {[](Calls& calls) { calls.countsBeforeLatch = true; }, {}}},
        {"stamp-previous", {[](Calls& calls) { calls.stamp = &Stamps::previous; }, {}}},
        {"stamp-vsync", {[](Calls& calls) { calls.stamp = &Stamps::vsync; }, {}}},
        {"stamp-zero", {[](Calls& calls) { calls.stamp = &Stamps::zero; }, {}}},
        {"half-ticks", {[](Calls& calls) { calls.ticksPerCall = 2; }, {}}},
        {"dropped-frames", {[](Calls& calls) { calls.framesPerDrop = 10; }, {}}},
        {"repeated-frames", {[](Calls& calls) { calls.framesPerRepeat = 10; }, {}}},
        {"other-layer", {[](Calls& calls) { calls.focusesSecondLayer = true; }, {}}},
        {"period-90hz", {[](Calls& calls) { calls.periodNs = kPeriod90Ns; }, {}}},
        {"boosts-before-latch", {[](Calls& calls) { calls.countsBoostsBeforeLatch = true; }, {}}},
        {"late-worker", {{}, forSections("energyScaling[Scale", delay)}},
        {"late-boosts", {{}, forSections("energyScaling[jank", delay)}},
        {"silent-boosts",
         {{}, forSections("energyScaling[jank", [](host::TraceMark&, int64_t) { return false; })}},
        {"lost-releases",
         {{},
          forSections("energyScaling[jank]-rel",
                      [](host::TraceMark&, int64_t count) { return count % 10 != 0; })}},
};

void run(const std::string& name, const std::string& profile, const std::string& path,
         const std::string& output) {
    const auto fault = kFaults.find(name);
    if (fault == kFaults.end()) throw std::runtime_error("unknown fault: " + name);
    host::loadProfile(profile);
    trace::TraceInput input(path, trace::Reading::Repeated);
    trace::TraceForm form;
    const trace::Timeline timeline = trace::readTimeline(input, {}, &form);
    Calls calls;
    if (fault->second.plant) fault->second.plant(calls);
    replay::Recording recording = Compositor(timeline, calls).run();
    if (fault->second.change) fault->second.change(recording.marks);
    std::ofstream out(output);
    report::writeTrace(input.open(), path, timeline, form, recording, out);
    if (!out.flush()) throw std::runtime_error(output + ": cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::cerr << "usage: plant_fault FAULT PROFILE TRACE OUTPUT\n";
        return 2;
    }
    try {
        run(argv[1], argv[2], argv[3], argv[4]);
    } catch (const std::exception& error) {
        std::cerr << "plant_fault: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
