#include "sim/simulation.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace brevold::sim {

namespace {

// Each source has an event or two at one time, and a burst of hints arrives at once.
constexpr int32_t kMaxEventsAtOneTime = 10'000;

}  // namespace

Simulation::Simulation(const Scenario& scenario, Library* library, Observer& observer)
      : mScenario(scenario),
        mDevice(scenario.device),
        mWorkload(scenario.workload),
        mPeriodNs(mWorkload.periodNs()),
        mEndNs(kStartNs + scenario.warmUpNs + scenario.measuredNs),
        mLibrary(library),
        mObserver(observer),
        mService(mDevice.service),
        mBuffers(mDevice.buffers.value_or(mWorkload.buffers)),
        mWork(mWorkload, scenario.seed),
        mBursts(mWorkload, scenario.seed) {
    mClusters.reserve(mDevice.clusters.size());
    for (size_t i = 0; i < mDevice.clusters.size(); ++i) {
        mClusters.emplace_back(mDevice.clusters[i], mDevice.governor,
                               i == mDevice.appCluster ? scenario.heldPoint : std::nullopt);
    }
    mTimesNs.fill(kNever);
    schedule(Source::MeasurementStart, kStartNs + scenario.warmUpNs);
    schedule(Source::Vsync, kStartNs);
    schedule(Source::GovernorTick, kStartNs);
    if (mWorkload.pace != Pace::Vsync) schedule(Source::FrameTime, kStartNs);
}

void Simulation::run() {
    for (const size_t cluster : {mDevice.appCluster, mDevice.compositorCluster}) {
        mObserver.onFrequency(mNowNs, cluster,
                              mClusters[cluster].spec().points[mClusters[cluster].point()]);
    }
    for (;;) {
        const auto next = std::min_element(mTimesNs.begin(), mTimesNs.end());
        if (*next >= mEndNs) break;
        mEventsAtNow = *next == mNowNs ? mEventsAtNow + 1 : 1;
        if (mEventsAtNow > kMaxEventsAtOneTime) {
            throw std::logic_error("the simulation stopped making progress");
        }
        mNowNs = *next;
        *next = kNever;
        handle(static_cast<Source>(next - mTimesNs.begin()));
    }
    mNowNs = mEndNs;
    mObserver.onEnd(mEndNs);
}

void Simulation::handle(Source source) {
    switch (source) {
        case Source::MeasurementStart:
            for (Cluster& cluster : mClusters)
                cluster.restartEnergy(mNowNs);
            mObserver.onMeasurementStart(mNowNs);
            break;
        case Source::AppWork:
            onAppWorkDone();
            break;
        case Source::CompositionWork:
            onCompositionDone();
            break;
        case Source::HintArrival:
            onHintArrival();
            break;
        case Source::HintExpiry:
            mService.expire(mNowNs);
            updateService();
            break;
        case Source::GovernorTick:
            onGovernorTick();
            break;
        case Source::Vsync:
            onVsync();
            break;
        case Source::Latch:
            onLatch();
            break;
        case Source::FrameTime:
            beginFrameIfPossible();
            break;
    }
}

void Simulation::onVsync() {
    ++mVsyncIndex;
    schedule(Source::Vsync, mNowNs + mPeriodNs);
    schedule(Source::Latch, mNowNs + mDevice.latchNs);
    mObserver.onVsync(mNowNs);
    if (mLibrary != nullptr) {
        mLibrary->vsync(mNowNs, mBuffers.depth(), mPeriodNs);
        sendHints();
    }
    if (mWorkload.pace != Pace::Vsync) return;
    mHasTick = !mAppFrame && mBursts.isActive(mNowNs - kStartNs);
    beginFrameIfPossible();
}

void Simulation::onLatch() {
    if (mComposedFrame) return;  // the previous composition is late
    mComposedFrame = mBuffers.latch(mNowNs, vsyncNs(mVsyncIndex));
    if (!mComposedFrame) return;
    startTask(Task::Compositor, mDevice.compositionWorkNs);
    mObserver.onLatch(mNowNs, *mComposedFrame, mBuffers.depth());
    if (mLibrary != nullptr) {
        mLibrary->beginComposition(mNowNs);
        mObserver.onMode(mNowNs, mLibrary->mode());
        sendHints();
    }
    beginFrameIfPossible();
}

void Simulation::onAppWorkDone() {
    finishTask(Task::App);
    const Frame frame = *mAppFrame;
    mAppFrame.reset();
    mFrameMhz = mClusters[mDevice.appCluster].meanMhz(Task::App);
    mBuffers.queue(frame, mNowNs);
    mPeakDepth = std::max(mPeakDepth, mBuffers.depth());
    mObserver.onQueue(mNowNs, frame, mBuffers.depth());
    if (mLibrary != nullptr) {
        mLibrary->reportFrame(mNowNs, mBuffers.depth(), mPeriodNs);
        sendHints();
    }
    beginFrameIfPossible();
}

void Simulation::onCompositionDone() {
    mObserver.onCompositionEnd(mNowNs);
    finishTask(Task::Compositor);
    const int64_t vsyncsSoFar = (mNowNs - kStartNs + mPeriodNs - 1) / mPeriodNs;
    mObserver.onShow(vsyncNs(vsyncsSoFar), *mComposedFrame);
    mComposedFrame.reset();
    const int32_t depthLeft = mBuffers.depth();
    if (mLibrary != nullptr) {
        mLibrary->endComposition(mNowNs,
                                 mScenario.boostDepth == BoostDepth::Left ? depthLeft : mPeakDepth);
        sendHints();
    }
    mPeakDepth = depthLeft;
}

void Simulation::onHintArrival() {
    const SentHint sent = mSentHints.front();
    mSentHints.pop_front();
    schedule(Source::HintArrival, mSentHints.empty() ? kNever : mSentHints.front().arrivalNs);
    mService.receive(sent.hint, sent.frameMhz, mNowNs);
    updateService();
}

void Simulation::onGovernorTick() {
    schedule(Source::GovernorTick, mNowNs + mDevice.governor.tickNs);
    for (size_t i = 0; i < mClusters.size(); ++i) {
        if (!mClusters[i].isBusy()) continue;
        mClusters[i].evaluateGovernor(mNowNs);
        updatePoint(i);
    }
}

void Simulation::beginFrameIfPossible() {
    if (mAppFrame || !mBuffers.hasFreeBuffer()) return;
    switch (mWorkload.pace) {
        case Pace::Free:
            beginFrame(mFrameIndex++);
            break;
        case Pace::Vsync:
            if (std::exchange(mHasTick, false)) beginFrame(mVsyncIndex);
            break;
        case Pace::Video:
        case Pace::Recorded: {
            const FrameTiming timing = mWorkload.timing(mFrameIndex);
            if (mNowNs < kStartNs + timing.earliestNs) {
                schedule(Source::FrameTime, kStartNs + timing.earliestNs);
                break;
            }
            beginFrame(mFrameIndex++, timing);
            break;
        }
    }
}

void Simulation::beginFrame(int64_t index, const FrameTiming& timing) {
    const FrameWork work = mWork.frame(index);
    mBuffers.dequeue();
    Frame& frame = mAppFrame.emplace();
    frame.beginNs = mNowNs;
    frame.workNs = work.workNs;
    frame.gpuNs = work.gpuNs;
    frame.dueNs = kStartNs + timing.dueNs;
    if (timing.recordedVsyncNs != 0) frame.recordedVsyncNs = kStartNs + timing.recordedVsyncNs;
    startTask(Task::App, work.workNs);
}

void Simulation::startTask(Task task, int64_t workNs) {
    const size_t cluster = clusterOf(task);
    mObserver.onTask(mNowNs, task, cluster, true);
    mClusters[cluster].start(task, workNs, mNowNs);
    mClusters[cluster].evaluateGovernor(mNowNs);
    updatePoint(cluster);
}

void Simulation::finishTask(Task task) {
    const size_t cluster = clusterOf(task);
    mClusters[cluster].finish(task, mNowNs);
    mObserver.onTask(mNowNs, task, cluster, false);
    scheduleCompletions();
}

void Simulation::sendHints() {
    for (const host::Hint& hint : mLibrary->takeHints()) {
        mObserver.onHint(hint);
        if (mSentHints.empty()) schedule(Source::HintArrival, mNowNs + mDevice.service.latencyNs);
        mSentHints.push_back({mNowNs + mDevice.service.latencyNs, hint, mFrameMhz});
    }
}

void Simulation::updateService() {
    schedule(Source::HintExpiry, mService.nextExpiryNs());
    mObserver.onService(mNowNs, mService);
    for (size_t i = 0; i < mClusters.size(); ++i)
        updatePoint(i);
}

void Simulation::updatePoint(size_t index) {
    Cluster& cluster = mClusters[index];
    const size_t point =
            mService.pointFor(cluster.spec(), index == mDevice.appCluster,
                              index == mDevice.compositorCluster, cluster.governorPoint());
    if (point != cluster.point()) {
        cluster.setPoint(point, mNowNs);
        mObserver.onFrequency(mNowNs, index, cluster.spec().points[point]);
    }
    scheduleCompletions();
}

void Simulation::scheduleCompletions() {
    schedule(Source::AppWork, mClusters[mDevice.appCluster].completionNs(Task::App));
    schedule(Source::CompositionWork,
             mClusters[mDevice.compositorCluster].completionNs(Task::Compositor));
}

}  // namespace brevold::sim
