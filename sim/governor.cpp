#include "sim/governor.h"

#include <algorithm>

namespace brevold::sim {

namespace {

size_t firstPoint(const GovernorSpec& spec, const ClusterSpec& cluster,
                  std::optional<size_t> heldPoint) {
    if (heldPoint) return *heldPoint;
    switch (spec.kind) {
        case GovernorKind::Schedutil:
            return cluster.pointForMhz(spec.floor * cluster.maxMhz());
        case GovernorKind::Performance:
            return cluster.points.size() - 1;
        case GovernorKind::Fixed:
            return cluster.pointForMhz(spec.fixedShare * cluster.maxMhz());
    }
    return 0;
}

}  // namespace

Governor::Governor(const GovernorSpec& spec, const ClusterSpec& cluster,
                   std::optional<size_t> heldPoint)
      : mSpec(spec),
        mCluster(cluster),
        mIsConstant(heldPoint.has_value() || spec.kind != GovernorKind::Schedutil),
        mPoint(firstPoint(spec, cluster, heldPoint)) {}

void Governor::update(int64_t nowNs, double utilisation) {
    if (mIsConstant) return;
    const double share = std::max(mSpec.floor, mSpec.headroom * (utilisation + mSpec.background));
    const size_t point = mCluster.pointForMhz(share * mCluster.maxMhz());
    const int64_t limitNs = point > mPoint ? mSpec.upLimitNs : mSpec.downLimitNs;
    if (point == mPoint || nowNs - mLastChangeNs < limitNs) return;
    mPoint = point;
    mLastChangeNs = nowNs;
}

}  // namespace brevold::sim
