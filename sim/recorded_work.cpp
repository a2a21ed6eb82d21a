#include "sim/recorded_work.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "sim/recorded_frames.h"
#include "sim/recorded_speed.h"
#include "trace/activity.h"
#include "trace/read_timeline.h"

namespace brevold::sim {

const Words<WorkMethod> kWorkMethodWords = {{"running-time", WorkMethod::RunningTime},
                                            {"dequeue-to-queue", WorkMethod::DequeueToQueue},
                                            {"latch-to-queue", WorkMethod::LatchToQueue}};

namespace {

using trace::Activity;
using BufferCall = Activity::BufferCall;

constexpr size_t kMaxThreads = 2;

/** The work of each frame but the first, where it can be measured. */
using Works = std::vector<std::optional<Progress>>;

/** Returns the process whose thread was the last one to call queueBuffer before most frames. */
std::optional<int32_t> producerOf(const QueuedFrames& frames, const Activity& activity,
                                  int32_t compositorPid) {
    std::vector<BufferCall> queues;
    for (const BufferCall& call : activity.bufferCalls) {
        if (call.kind == BufferCall::Kind::Queue && call.pid != compositorPid) {
            queues.push_back(call);
        }
    }
    const auto isEarlier = [](const BufferCall& a, const BufferCall& b) {
        return a.beginNs < b.beginNs;
    };
    std::stable_sort(queues.begin(), queues.end(), isEarlier);
    std::map<int32_t, int32_t> votes;
    for (const QueuedFrame& frame : frames.frames) {
        const BufferCall at = {BufferCall::Kind::Queue, 0, 0, frame.queuedNs, 0};
        const auto next = std::upper_bound(queues.begin(), queues.end(), at, isEarlier);
        if (next != queues.begin()) ++votes[std::prev(next)->pid];
    }
    const auto most =
            std::max_element(votes.begin(), votes.end(),
                             [](const auto& a, const auto& b) { return a.second < b.second; });
    if (most == votes.end()) return {};
    return most->first;
}

/** The running threads of a process, from the first frame to the last. */
std::map<int32_t, WorkCurve> runsOf(int32_t pid, const QueuedFrames& frames,
                                    const Activity& activity, RecordedSpeed& speed) {
    struct Run {
        int32_t tid = 0;
        int64_t beginNs = 0;
    };
    std::map<int32_t, Run> running;  // by processor
    std::map<int32_t, WorkCurve> curves;
    const auto end = [&](int32_t processor, const Run& run, int64_t endNs) {
        const auto process = activity.processes.find(run.tid);
        if (process == activity.processes.end() || process->second != pid) return;
        speed.addRun(processor, std::max(run.beginNs, frames.beginNs()),
                     std::min(endNs, frames.endNs()), &curves[run.tid]);
    };
    for (const Activity::Switch& change : activity.switches) {
        const Run run = std::exchange(running[change.processor], {change.tid, change.timeNs});
        end(change.processor, run, change.timeNs);
    }
    for (const auto& [processor, run] : running)
        end(processor, run, frames.endNs());
    return curves;
}

/** Chooses a method and measures with it. */
class Measurement {
  public:
    Measurement(const QueuedFrames& frames, const Activity& activity, std::optional<int32_t> pid,
                const Device& device, RecordedWork& result)
          : mFrames(frames),
            mActivity(activity),
            mPid(pid),
            mSpeed(device, activity.frequencies),
            mResult(result) {}

    Works measure() {
        Works works;
        if (!measureRuns(&works) && !measureFromDequeues(&works)) measureFromLatches(&works);
        return works;
    }

    bool hasAssumedSpeed() const { return mSpeed.hasAssumed(); }

  private:
    bool measureRuns(Works* works) {
        if (!mPid) return false;
        const std::map<int32_t, WorkCurve> curves = runsOf(*mPid, mFrames, mActivity, mSpeed);
        std::vector<std::pair<int32_t, const WorkCurve*>> busiest;
        for (const auto& [tid, curve] : curves) {
            if (curve.totalRunNs() > 0.0) busiest.emplace_back(tid, &curve);
        }
        if (busiest.empty()) return false;
        std::stable_sort(busiest.begin(), busiest.end(), [](const auto& a, const auto& b) {
            return a.second->totalRunNs() > b.second->totalRunNs();
        });
        busiest.resize(std::min(busiest.size(), kMaxThreads));
        mResult.method = WorkMethod::RunningTime;
        for (const auto& [tid, curve] : busiest) {
            const auto name = mActivity.names.find(tid);
            mResult.threads.push_back({tid, name == mActivity.names.end() ? "" : name->second});
        }
        for (size_t i = 1; i < mFrames.frames.size(); ++i) {
            Progress sum = {0.0, 0.0};
            for (const auto& [tid, curve] : busiest) {
                const Progress progress =
                        curve->between(mFrames.frames[i - 1].queuedNs, mFrames.frames[i].queuedNs);
                sum.runNs += progress.runNs;
                sum.workNs += progress.workNs;
            }
            works->emplace_back(sum);
        }
        return true;
    }

    bool measureFromDequeues(Works* works) {
        std::vector<int64_t> dequeuesNs;
        for (const BufferCall& call : mActivity.bufferCalls) {
            if (call.kind == BufferCall::Kind::Dequeue && call.pid == mPid) {
                dequeuesNs.push_back(call.endNs);
            }
        }
        if (dequeuesNs.empty()) return false;
        mResult.method = WorkMethod::DequeueToQueue;
        const WorkCurve curve = wholeCurve();
        for (size_t i = 1; i < mFrames.frames.size(); ++i) {
            int64_t beginNs = mFrames.frames[i - 1].queuedNs;
            const int64_t endNs = mFrames.frames[i].queuedNs;
            const auto next = std::lower_bound(dequeuesNs.begin(), dequeuesNs.end(), endNs);
            if (next != dequeuesNs.begin()) beginNs = std::max(beginNs, *std::prev(next));
            works->emplace_back(curve.between(beginNs, endNs));
        }
        return true;
    }

    void measureFromLatches(Works* works) {
        mResult.method = WorkMethod::LatchToQueue;
        const WorkCurve curve = wholeCurve();
        for (size_t i = 1; i < mFrames.frames.size(); ++i) {
            const QueuedFrame& before = mFrames.frames[i - 1];
            const int64_t endNs = mFrames.frames[i].queuedNs;
            const bool waited = before.depth == mResult.maxDepth && before.nextLatchNs < endNs;
            works->push_back(waited ? std::optional(curve.between(before.nextLatchNs, endNs))
                                    : std::nullopt);
        }
    }

    WorkCurve wholeCurve() {
        WorkCurve curve;
        mSpeed.addAppRun(mFrames.beginNs(), mFrames.endNs(), &curve);
        return curve;
    }

    const QueuedFrames& mFrames;
    const Activity& mActivity;
    const std::optional<int32_t> mPid;
    RecordedSpeed mSpeed;
    RecordedWork& mResult;
};

/** Gives the frames that were not measured the median work. Returns their number. */
int32_t fillGaps(Works& works) {
    std::vector<Progress> measured;
    for (const std::optional<Progress>& work : works) {
        if (work) measured.push_back(*work);
    }
    if (measured.empty()) return static_cast<int32_t>(works.size());
    const auto middle = measured.begin() + static_cast<ptrdiff_t>(measured.size() / 2);
    std::nth_element(measured.begin(), middle, measured.end(),
                     [](const Progress& a, const Progress& b) { return a.workNs < b.workNs; });
    for (std::optional<Progress>& work : works) {
        if (!work) work = *middle;
    }
    return static_cast<int32_t>(works.size() - measured.size());
}

/** Moves the frames from the time of the recording to that of a simulation. */
void addFrames(const QueuedFrames& queued, const Works& works, int64_t latchNs,
               RecordedWork* result) {
    const RecordedVsyncs vsyncs(queued, latchNs);
    int64_t lastVsync = 0;
    constexpr int64_t kAnyVsync = std::numeric_limits<int64_t>::min();
    int64_t afterPrevious = kAnyVsync;
    for (size_t i = 1; i < queued.frames.size(); ++i) {
        const QueuedFrame& frame = queued.frames[i];
        const Progress& work = *works[i - 1];
        RecordedFrame added = {vsyncs.simulated(frame.queuedNs - static_cast<int64_t>(work.runNs)),
                               static_cast<int64_t>(work.workNs)};
        const int64_t firstVsync =
                std::max(vsyncs.firstLatchAt(vsyncs.simulated(frame.queuedNs)), afterPrevious);
        lastVsync = std::max(lastVsync, firstVsync);
        if (frame.latchedNs != kNever) {
            const int64_t vsync = vsyncs.indexOf(frame.latchedNs);
            added.vsyncNs = vsync * queued.periodNs;
            if (vsync > firstVsync) added.dueNs = added.vsyncNs;
            lastVsync = std::max(lastVsync, vsync);
            afterPrevious = vsync + 1;
        } else {
            afterPrevious = kAnyVsync;
        }
        result->frames.push_back(added);
    }
    const int64_t shiftNs =
            (vsyncs.firstLatchAt(result->frames.front().earliestNs) - 1) * queued.periodNs;
    for (RecordedFrame& frame : result->frames) {
        frame.earliestNs -= shiftNs;
        if (frame.vsyncNs != 0) frame.vsyncNs -= shiftNs;
        if (frame.dueNs != 0) frame.dueNs -= shiftNs;
    }
    result->lengthNs = (lastVsync + 1) * queued.periodNs - shiftNs;
}

}  // namespace

RecordedWork readRecordedWork(trace::TraceInput& trace, const std::optional<std::string>& layer,
                              const Device& device) {
    trace::TraceForm form;
    trace::TimelineOptions options;
    options.layer = layer;
    const QueuedFrames frames =
            queuedFrames(trace::readTimeline(trace, options, &form), trace.name());
    const Activity activity = trace::readActivity(trace);

    RecordedWork result;
    result.layer = frames.layer;
    result.periodNs = frames.periodNs;
    for (const QueuedFrame& frame : frames.frames)
        result.maxDepth = std::max(result.maxDepth, frame.depth);
    Measurement measurement(frames, activity, producerOf(frames, activity, form.compositorPid),
                            device, result);
    Works works = measurement.measure();
    if (measurement.hasAssumedSpeed()) result.assumedSpeed = device.recordedSpeed;
    result.unmeasuredFrames = fillGaps(works);
    if (!works.front()) {
        throw InputError(fmt::format(
                "{}: the work of layer {} cannot be measured: there are no scheduler events of its "
                "application, no dequeueBuffer sections, and its queue is never full",
                trace.name(), frames.layer));
    }
    addFrames(frames, works, device.latchNs, &result);
    return result;
}

}  // namespace brevold::sim
