#include "sim/run_curves.h"

#include <algorithm>

#include "base/time_units.h"

namespace brevold::sim {

namespace {

double toS(int64_t timeNs) {
    return toSeconds(timeNs - kStartNs);
}

}  // namespace

void RunCurvesObserver::Value::set(int64_t nowNs, std::optional<double> value) {
    if (mValue && mSinceNs < nowNs) spans.push_back({toS(mSinceNs), toS(nowNs), *mValue});
    mSinceNs = nowNs;
    mValue = value;
}

RunCurvesObserver::RunCurvesObserver(const Device& device, int64_t warmUpNs)
      : mDevice(device), mLoads(device.clusters.size()) {
    mCurves.beginS = toSeconds(warmUpNs);
    mDepth.set(kStartNs, 0.0);
}

void RunCurvesObserver::onTask(int64_t nowNs, Task /*task*/, size_t cluster, bool isBusy) {
    mLoads[cluster].busyCores += isBusy ? 1 : -1;
    updatePower(nowNs);
}

void RunCurvesObserver::onFrequency(int64_t nowNs, size_t cluster, const OperatingPoint& point) {
    mLoads[cluster].mw = point.mw;
    mLoads[cluster].mhz.set(nowNs, point.mhz);
    updatePower(nowNs);
}

void RunCurvesObserver::onQueue(int64_t nowNs, const Frame& frame, int32_t depth) {
    const double frameMs = toMs(nowNs - frame.beginNs);
    addPoint(nowNs, frameMs, mCurves.frameTimesMs);
    mDepth.set(nowNs, depth);
}

void RunCurvesObserver::onLatch(int64_t nowNs, const Frame& /*frame*/, int32_t depth) {
    mDepth.set(nowNs, depth);
}

void RunCurvesObserver::onHint(const host::Hint& hint) {
    if (hint.kind == host::HintKind::Up) addPoint(hint.timeNs, hint.scale, mCurves.ups);
}

void RunCurvesObserver::onService(int64_t nowNs, const Service& service) {
    mDownScale.set(nowNs, service.downScale());
    mCap.set(nowNs, service.capMhz(mDevice.clusters[mDevice.appCluster]));
    mBoost.set(nowNs, service.isBoosted() ? std::optional(1.0) : std::nullopt);
}

void RunCurvesObserver::onEnd(int64_t nowNs) {
    const auto finish = [&](Value& value) {
        value.set(nowNs, {});
        plot::PlotSpans spans;
        for (const plot::PlotSpan& span : value.spans) {
            if (span.toS <= mCurves.beginS) continue;
            spans.push_back({std::max(span.fromS, mCurves.beginS), span.toS, span.value});
        }
        return spans;
    };
    mCurves.endS = toS(nowNs);
    mCurves.depths = finish(mDepth);
    for (Load& load : mLoads)
        mCurves.frequenciesMhz.push_back(finish(load.mhz));
    mCurves.capsMhz = finish(mCap);
    mCurves.powerMw = finish(mPower);
    mCurves.downScales = finish(mDownScale);
    mCurves.boosts = finish(mBoost);
}

void RunCurvesObserver::addPoint(int64_t nowNs, double value, plot::PlotPoints& points) const {
    if (toS(nowNs) >= mCurves.beginS) points.push_back({toS(nowNs), value});
}

void RunCurvesObserver::updatePower(int64_t nowNs) {
    const auto mwOf = [this](size_t cluster) {
        return mLoads[cluster].mw * mLoads[cluster].busyCores + mDevice.clusters[cluster].staticMw;
    };
    double mw = mwOf(mDevice.appCluster);
    if (mDevice.compositorCluster != mDevice.appCluster) mw += mwOf(mDevice.compositorCluster);
    mPower.set(nowNs, mw);
}

}  // namespace brevold::sim
