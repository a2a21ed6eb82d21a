#include "sim/recorded_speed.h"

#include <algorithm>

namespace brevold::sim {

namespace {

constexpr double kKhzPerMhz = 1e3;

}  // namespace

RecordedSpeed::RecordedSpeed(const Device& device,
                             const std::vector<trace::Activity::Frequency>& frequencies)
      : mDevice(device), mChanges(device.clusters.size()) {
    const double appMaxMhz = device.clusters[device.appCluster].maxMhz();
    for (const trace::Activity::Frequency& change : frequencies) {
        const std::optional<size_t> index = device.clusterOf(change.processor);
        if (!index) continue;
        const ClusterSpec& cluster = device.clusters[*index];
        const double mhz = static_cast<double>(change.khz) / kKhzPerMhz;
        mChanges[*index].push_back(
                {change.timeNs, cluster.speedAtMhz(mhz) * cluster.maxMhz() / appMaxMhz});
    }
}

void RecordedSpeed::addRun(int32_t processor, int64_t beginNs, int64_t endNs, WorkCurve* curve) {
    const std::optional<size_t> cluster = mDevice.clusterOf(processor);
    addRun(cluster ? mChanges[*cluster] : std::vector<Change>(), beginNs, endNs, curve);
}

void RecordedSpeed::addAppRun(int64_t beginNs, int64_t endNs, WorkCurve* curve) {
    addRun(mChanges[mDevice.appCluster], beginNs, endNs, curve);
}

void RecordedSpeed::addRun(const std::vector<Change>& changes, int64_t beginNs, int64_t endNs,
                           WorkCurve* curve) {
    if (changes.empty()) {
        mHasAssumed = true;
        curve->add(beginNs, endNs, mDevice.recordedSpeed);
        return;
    }
    // Before the first change, the frequency is taken to be the first one.
    auto next =
            std::upper_bound(changes.begin(), changes.end(), beginNs,
                             [](int64_t ns, const Change& change) { return ns < change.timeNs; });
    double speed = next == changes.begin() ? next->speed : std::prev(next)->speed;
    for (; next != changes.end() && next->timeNs < endNs; ++next) {
        curve->add(beginNs, next->timeNs, speed);
        beginNs = next->timeNs;
        speed = next->speed;
    }
    curve->add(beginNs, endNs, speed);
}

}  // namespace brevold::sim
