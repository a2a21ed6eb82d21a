#include "sim/service.h"

#include <algorithm>

#include "base/time_units.h"

namespace brevold::sim {

void Service::receive(const host::Hint& hint, double frameSpeed, int64_t nowNs) {
    const int64_t endNs = nowNs + hint.durationMs * kNsPerMs;
    switch (hint.kind) {
        case host::HintKind::Down:
        case host::HintKind::Up:
            mScaling = {hint.kind, hint.scale, frameSpeed, endNs};
            break;
        case host::HintKind::JankBoost:
            mBoostEndNs = endNs;
            break;
        case host::HintKind::Release:
            mBoostEndNs = kNever;
            break;
        case host::HintKind::RefreshRate:
            break;
    }
}

int64_t Service::nextExpiryNs() const {
    return std::min(mScaling ? mScaling->endNs : kNever, mBoostEndNs);
}

void Service::expire(int64_t nowNs) {
    if (mScaling && mScaling->endNs <= nowNs) mScaling.reset();
    if (mBoostEndNs <= nowNs) mBoostEndNs = kNever;
}

std::optional<double> Service::downScale() const {
    if (!mScaling || mScaling->kind != host::HintKind::Down) return {};
    return mScaling->scale;
}

size_t Service::pointFor(const ClusterSpec& cluster, bool hasApp, bool hasCompositor,
                         size_t governorPoint) const {
    const bool isTarget = mSpec.boost == BoostTarget::All ||
                          (mSpec.boost == BoostTarget::Compositor && hasCompositor);
    if (isBoosted() && isTarget) return cluster.points.size() - 1;
    return hasApp && mScaling ? scaledPoint(cluster, governorPoint) : governorPoint;
}

size_t Service::scaledPoint(const ClusterSpec& cluster, size_t governorPoint) const {
    const double scale = mScaling->scale;
    const double governorMhz = cluster.points[governorPoint].mhz;
    if (mScaling->kind == host::HintKind::Up) {
        if (mSpec.up == UpReading::None) return governorPoint;
        return cluster.pointForMhz(scale * governorMhz);
    }
    switch (mSpec.down) {
        case DownReading::Cap:
            return std::min(governorPoint, cluster.pointForMhz(scale * cluster.maxMhz()));
        case DownReading::Governor:
            return cluster.pointForMhz(scale * governorMhz);
        case DownReading::Frame:
            return std::min(governorPoint, cluster.pointForSpeed(scale * mScaling->frameSpeed));
    }
    return governorPoint;
}

}  // namespace brevold::sim
