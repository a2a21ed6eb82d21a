#include "sim/cluster.h"

#include <algorithm>
#include <cmath>

namespace brevold::sim {

Cluster::Cluster(const ClusterSpec& spec, const GovernorSpec& governor,
                 std::optional<size_t> heldPoint)
      : mSpec(spec),
        mGovernor(governor, spec, heldPoint),
        mCores(kTaskCount, Core(governor)),
        mPoint(mGovernor.point()),
        mSpeed(spec.speedAt(mPoint)),
        mBusyNs(spec.points.size()) {}

bool Cluster::isBusy() const {
    return std::any_of(mCores.begin(), mCores.end(), [](const Core& core) { return core.isBusy; });
}

void Cluster::start(Task task, int64_t workNs, int64_t nowNs) {
    advance(nowNs);
    core(task).isBusy = true;
    core(task).remainingNs = static_cast<double>(workNs);
    core(task).elapsedNs = core(task).mhzNs = 0.0;
    core(task).utilisation.wakeUp();
}

int64_t Cluster::completionNs(Task task) const {
    if (!core(task).isBusy) return kNever;
    const double remainingNs = std::max(core(task).remainingNs, 0.0);
    return mNowNs + static_cast<int64_t>(std::ceil(remainingNs / mSpeed));
}

void Cluster::finish(Task task, int64_t nowNs) {
    advance(nowNs);
    core(task).isBusy = false;
    core(task).utilisation.sleep();
}

double Cluster::meanMhz(Task task) const {
    const double elapsedNs = core(task).elapsedNs;
    return elapsedNs > 0.0 ? core(task).mhzNs / elapsedNs : mSpec.points[mPoint].mhz;
}

void Cluster::evaluateGovernor(int64_t nowNs) {
    advance(nowNs);
    double utilisation = 0.0;
    for (const Core& core : mCores)
        utilisation = std::max(utilisation, core.utilisation.value());
    mGovernor.update(nowNs, utilisation);
}

void Cluster::setPoint(size_t point, int64_t nowNs) {
    advance(nowNs);
    mPoint = point;
    mSpeed = mSpec.speedAt(point);
}

void Cluster::restartEnergy(int64_t nowNs) {
    advance(nowNs);
    mEnergyStartNs = nowNs;
    std::fill(mBusyNs.begin(), mBusyNs.end(), 0);
}

double Cluster::energyMj(int64_t nowNs) {
    advance(nowNs);
    double energy = mSpec.staticMw * static_cast<double>(nowNs - mEnergyStartNs);
    for (size_t i = 0; i < mBusyNs.size(); ++i)
        energy += mSpec.points[i].mw * static_cast<double>(mBusyNs[i]);
    return energy / 1e9;
}

void Cluster::advance(int64_t nowNs) {
    if (nowNs == mNowNs) return;
    const auto elapsedNs = static_cast<double>(nowNs - mNowNs);
    const double mhz = mSpec.points[mPoint].mhz;
    for (Core& core : mCores) {
        if (core.isBusy) {
            core.remainingNs -= elapsedNs * mSpeed;
            core.elapsedNs += elapsedNs;
            core.mhzNs += elapsedNs * mhz;
            core.utilisation.runFor(elapsedNs, mhz / mSpec.maxMhz());
            mBusyNs[mPoint] += nowNs - mNowNs;
        } else {
            core.utilisation.idleFor(elapsedNs);
        }
    }
    mNowNs = nowNs;
}

}  // namespace brevold::sim
