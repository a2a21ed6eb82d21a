// plant_fault FAULT PROFILE TRACE OUTPUT: writes a trace with the marks that the library leaves if
// the compositor calls it wrongly, or if its workers fail.

#include <deque>
#include <fstream>
#include <map>
#include <utility>

#include "host/device_profile.h"
#include "host/driver.h"
#include "replay/player.h"
#include "report/marked_trace.h"
#include "trace/read_timeline.h"

using namespace brevold;
using trace::TimelineEvent;

namespace {

constexpr int64_t kPeriod90Ns = 11'111'111;
constexpr int64_t kDelayNs = 40'000'000;

struct Fault {
    /** Changes the report of a frame. */
    void (*report)(LayerFrameInfo&) = [](LayerFrameInfo&) {};
    /** How often every tenth frame is reported. */
    int reportsOfTenth = 1;
    int64_t compositionsPerTick = 1;
    replay::BoostDepth boostDepth = replay::BoostDepth::Left;
    bool focusesOtherLayer = false;
    /** The start of the label of the worker sections that fail. */
    const char* section = "no section";
    /** Changes a mark of such a section, or returns false to drop it; `count` starts at 1. */
    bool (*keep)(host::TraceMark&, int64_t count) = nullptr;
};

Fault gFault;
// The starts of the latest composition and of the one before, and the latest vsync.
int64_t gLatestNs, gPreviousNs, gVsyncNs;
int64_t gFrames, gCompositions;
/** For each layer, the time of the latest report. */
std::map<std::string, int64_t> gLastNs;
/** The queue depth as counted before the latest latch, for each frame that is not reported yet. */
std::deque<int32_t> gDepthsBeforeLatch;

std::deque<int32_t> depthsBeforeLatch(const trace::Timeline& timeline) {
    struct Queue {
        int32_t depth = 0, counted = 0;
        bool isLatched = false;
    };
    std::vector<Queue> queues(timeline.layers.size());
    std::deque<int32_t> depths;
    for (const TimelineEvent& event : timeline.events) {
        Queue& queue = queues[static_cast<size_t>(event.layer)];
        if (event.kind == TimelineEvent::Kind::Frame) {
            depths.push_back(++queue.counted);
            queue.depth = event.depth;
        } else if (event.kind == TimelineEvent::Kind::Depth) {
            if (!std::exchange(queue.isLatched, true)) queue.counted = queue.depth;
            queue.depth = event.depth;
        } else if (event.kind == TimelineEvent::Kind::CompositionEnd) {
            for (Queue& each : queues)
                if (!std::exchange(each.isLatched, false)) each.counted = each.depth;
        }
    }
    return depths;
}

bool delay(host::TraceMark& mark, int64_t /*count*/) {
    mark.timeNs += kDelayNs;
    return true;
}

const std::map<std::string, Fault> kFaults = [] {
    std::map<std::string, Fault> faults = {{"none", {}}};
    faults["depth-plus-one"].report = [](LayerFrameInfo& info) { ++info.lastMaxQueuedFrames; };
    faults["depth-minus-one"].report = [](LayerFrameInfo& info) { --info.lastMaxQueuedFrames; };
    faults["depth-before-latch"].report = [](LayerFrameInfo& info) {
        info.lastMaxQueuedFrames = gDepthsBeforeLatch.front();
    };
    faults["stamp-previous"].report = [](LayerFrameInfo& info) { info.sfTime = gPreviousNs; };
    faults["stamp-vsync"].report = [](LayerFrameInfo& info) { info.sfTime = gVsyncNs; };
    faults["stamp-zero"].report = [](LayerFrameInfo& info) { info.sfTime = 0; };
    faults["period-90hz"].report = [](LayerFrameInfo& info) { info.refreshPeriod = kPeriod90Ns; };
    faults["half-ticks"].compositionsPerTick = 2;
    faults["dropped-frames"].reportsOfTenth = 0;
    faults["repeated-frames"].reportsOfTenth = 2;
    faults["other-layer"].focusesOtherLayer = true;
    faults["boosts-before-latch"].boostDepth = replay::BoostDepth::Found;
    const auto keepNone = [](host::TraceMark&, int64_t) { return false; };
    const auto loseTenth = [](host::TraceMark&, int64_t count) { return count % 10 != 0; };
    const std::tuple<const char*, const char*, decltype(Fault::keep)> ofWorkers[] = {
            {"late-worker", "energyScaling[Scale", delay},
            {"late-boosts", "energyScaling[jank", delay},
            {"silent-boosts", "energyScaling[jank", keepNone},
            {"lost-releases", "energyScaling[jank]-rel", loseTenth},
    };
    for (const auto& [name, section, keep] : ofWorkers) {
        faults[name].section = section;
        faults[name].keep = keep;
    }
    return faults;
}();

/** Sections of workers have no sections inside. */
std::vector<replay::RecordedMark> changedMarks(const std::vector<replay::RecordedMark>& marks) {
    bool isInside = false;
    int64_t count = 0;
    std::vector<replay::RecordedMark> kept;
    for (replay::RecordedMark mark : marks) {
        if (mark.mark.isBegin) {
            isInside = mark.mark.label.rfind(gFault.section, 0) == 0;
            count += isInside ? 1 : 0;
        }
        if (!isInside || mark.mark.thread < 0 || gFault.keep(mark.mark, count))
            kept.push_back(mark);
    }
    return kept;
}

}  // namespace

// The linker replaces the functions of the driver with these.
extern "C" {

void __real__ZN7brevold4host6Driver5frameElR14LayerFrameInfo(host::Driver*, int64_t,
                                                             LayerFrameInfo&);
void __wrap__ZN7brevold4host6Driver5frameElR14LayerFrameInfo(host::Driver* driver, int64_t timeNs,
                                                             LayerFrameInfo& info) {
    gFault.report(info);
    gDepthsBeforeLatch.pop_front();
    int64_t& lastNs = gLastNs.try_emplace(info.layerName, info.lastQbTime).first->second;
    for (int i = ++gFrames % 10 == 0 ? gFault.reportsOfTenth : 1; i > 0; --i) {
        info.lastQbTime = std::exchange(lastNs, timeNs);
        __real__ZN7brevold4host6Driver5frameElR14LayerFrameInfo(driver, timeNs, info);
    }
}

void __real__ZN7brevold4host6Driver16beginCompositionEl(host::Driver*, int64_t);
void __wrap__ZN7brevold4host6Driver16beginCompositionEl(host::Driver* driver, int64_t timeNs) {
    gPreviousNs = std::exchange(gLatestNs, timeNs);
    if (gCompositions++ % gFault.compositionsPerTick == 0)
        __real__ZN7brevold4host6Driver16beginCompositionEl(driver, timeNs);
}

bool __wrap__ZN7brevold4host6Driver5vsyncElil(host::Driver*, int64_t timeNs, int32_t, int64_t) {
    gVsyncNs = timeNs;
    return false;  // the marks have no boost verdicts
}
}

int main(int /*argc*/, char** argv) {
    gFault = kFaults.at(argv[1]);
    host::loadProfile(argv[2]);
    const std::string path = argv[3];
    trace::TraceInput input(path, trace::Reading::Repeated);
    trace::TraceForm form;
    trace::Timeline timeline = trace::readTimeline(input, {}, &form);
    gDepthsBeforeLatch = depthsBeforeLatch(timeline);
    if (gFault.focusesOtherLayer) timeline.focusedLayer = 1 - timeline.focusedLayer;
    replay::Recording recording = replay::play(timeline, {gFault.boostDepth, true});
    recording.marks = changedMarks(recording.marks);
    recording.hints.clear();
    std::ofstream out(argv[4]);
    report::writeTrace(input.open(), path, timeline, form, recording, out);
    return out.flush() ? 0 : 1;
}
