#include "sim/run_curves.h"

#include <algorithm>
#include <cmath>

#include "base/time_units.h"

namespace brevold::sim {

namespace {

double toS(int64_t timeNs) {
    return toSeconds(timeNs - kStartNs);
}

}  // namespace

RunCurvesObserver::RunCurvesObserver(const Scenario& scenario, size_t columns)
      : mScenario(scenario),
        mColumnNs(static_cast<double>(scenario.warmUpNs + scenario.measuredNs) /
                  static_cast<double>(columns)),
        mLoads(scenario.device.clusters.size()),
        mEnergy(columns) {
    mCurves.frequenciesMhz.resize(scenario.device.clusters.size());
}

void RunCurvesObserver::onTask(int64_t nowNs, Task /*task*/, size_t cluster, bool isBusy) {
    addEnergy(nowNs, cluster);
    mLoads[cluster].busyCores += isBusy ? 1 : -1;
}

void RunCurvesObserver::onFrequency(int64_t nowNs, size_t cluster, const OperatingPoint& point) {
    addEnergy(nowNs, cluster);
    mLoads[cluster].mw = point.mw;
    mCurves.frequenciesMhz[cluster].push_back({toS(nowNs), point.mhz});
}

void RunCurvesObserver::onQueue(int64_t nowNs, const Frame& frame, int32_t depth) {
    const double frameMs = toMs(nowNs - frame.beginNs);
    mCurves.frameTimesMs.push_back({toS(nowNs), frameMs});
    mCurves.depths.push_back({toS(nowNs), static_cast<double>(depth)});
}

void RunCurvesObserver::onLatch(int64_t nowNs, const Frame& /*frame*/, int32_t depth) {
    mCurves.depths.push_back({toS(nowNs), static_cast<double>(depth)});
}

void RunCurvesObserver::onHint(const host::Hint& hint) {
    if (hint.kind == host::HintKind::Up) mCurves.ups.push_back({toS(hint.timeNs), hint.scale});
}

void RunCurvesObserver::onService(int64_t nowNs, const Service& service) {
    const double nowS = toS(nowNs);
    const std::optional<double> scale = service.downScale();
    if (scale) {
        mCurves.downScales.push_back({nowS, *scale});
    } else {
        breakDown(nowS);
    }
    if (service.isBoosted() && !mBoostBeginS) mBoostBeginS = nowS;
    if (!service.isBoosted() && mBoostBeginS) {
        mCurves.boosts.push_back({*mBoostBeginS, nowS});
        mBoostBeginS.reset();
    }
}

void RunCurvesObserver::onEnd(int64_t nowNs) {
    for (size_t cluster = 0; cluster < mLoads.size(); ++cluster) {
        addEnergy(nowNs, cluster);
        if (mCurves.frequenciesMhz[cluster].empty()) continue;
        mCurves.frequenciesMhz[cluster].push_back(
                {toS(nowNs), mCurves.frequenciesMhz[cluster].back().value});
    }
    if (mBoostBeginS) mCurves.boosts.push_back({*mBoostBeginS, toS(nowNs)});
    breakDown(toS(nowNs));
    if (!mCurves.downScales.empty()) mCurves.downScales.pop_back();
    for (size_t i = 0; i < mEnergy.size(); ++i) {
        mCurves.powerMw.push_back(
                {static_cast<double>(i) * mColumnNs / 1e9, mEnergy[i] / mColumnNs});
    }
    mCurves.endS = toS(nowNs);
}

void RunCurvesObserver::breakDown(double nowS) {
    plot::PlotPoints& scales = mCurves.downScales;
    if (scales.empty() || std::isnan(scales.back().value)) return;
    scales.push_back({nowS, scales.back().value});
    scales.push_back({nowS, std::nan("")});
}

void RunCurvesObserver::addEnergy(int64_t nowNs, size_t cluster) {
    Load& load = mLoads[cluster];
    const double mw = load.mw * load.busyCores + mScenario.device.clusters[cluster].staticMw;
    auto fromNs = static_cast<double>(load.sinceNs - kStartNs);
    const auto toNs = static_cast<double>(nowNs - kStartNs);
    load.sinceNs = nowNs;
    while (fromNs < toNs) {
        const auto column = std::min(static_cast<size_t>(fromNs / mColumnNs), mEnergy.size() - 1);
        const double columnEndNs =
                column + 1 < mEnergy.size() ? static_cast<double>(column + 1) * mColumnNs : toNs;
        const double untilNs = std::max(std::min(toNs, columnEndNs), fromNs + 1.0);
        mEnergy[column] += mw * (untilNs - fromNs);
        fromNs = untilNs;
    }
}

}  // namespace brevold::sim
