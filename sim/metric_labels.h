#pragma once

#include "sim/metrics.h"

namespace brevold::sim {

struct MetricLabel {
    Metric metric;
    const char* key;    // in JSON, with the unit
    const char* label;  // in tables
    double factor;      // from the metric to the unit of the table
    int decimals;       // in tables
};

/** Every metric once, in the order of the output. */
constexpr MetricLabel kMetricLabels[] = {
        {Metric::AppPowerMw, "app_power_mw", "power, application's cluster, mW", 1, 1},
        {Metric::CompositorPowerMw, "compositor_power_mw", "power, compositor's cluster, mW", 1, 1},
        {Metric::TotalPowerMw, "power_mw", "power, both clusters, mW", 1, 1},
        {Metric::EnergyRatio, "energy_ratio", "energy, both, share of library off", 1, 3},
        {Metric::AppEnergyRatio, "app_energy_ratio", "energy, application's, share of off", 1, 3},
        {Metric::FrameEnergyMj, "frame_energy_mj", "energy per frame shown, mJ", 1, 2},
        {Metric::FramesPerSecond, "frames_per_s", "frames shown a second", 1, 2},
        {Metric::MissedPerMinute, "missed_per_min", "vsyncs missed a minute", 1, 1},
        {Metric::IntervalMedianMs, "interval_median_ms", "frame interval, median, ms", 1, 2},
        {Metric::IntervalP99Ms, "interval_p99_ms", "frame interval, 99th percentile, ms", 1, 2},
        {Metric::QueueLatencyMs, "queue_latency_ms", "latency, queue to latch, ms", 1, 2},
        {Metric::ShowLatencyMs, "show_latency_ms", "latency, start to display, ms", 1, 2},
        {Metric::FrameTimeMs, "frame_time_ms", "frame time, mean, ms", 1, 2},
        {Metric::FrameTimeSdMs, "frame_time_sd_ms", "frame time, standard deviation, ms", 1, 2},
        {Metric::FrameTimeCorrelation, "frame_time_correlation", "frame time, lag-one correlation",
         1, 2},
        {Metric::DownShare, "down_share", "time under DOWN, %", 100, 1},
        {Metric::DownScale, "down_scale", "mean scale under DOWN", 1, 3},
        {Metric::BoostShare, "boost_share", "time under jank boost, %", 100, 1},
        {Metric::HintsPerSecond, "hints_per_s", "hints a second", 1, 1},
        {Metric::RecordedLatchShare, "recorded_latch_share", "latched at the recorded vsync, %",
         100, 1},
        {Metric::LateLatchShare, "late_latch_share", "latched later than recorded, %", 100, 1},
        {Metric::Mode0Share, "mode_0_share", "mode 0, % of time", 100, 1},
        {Metric::Mode1Share, "mode_1_share", "mode 1, % of time", 100, 1},
        {Metric::Mode2Share, "mode_2_share", "mode 2, % of time", 100, 1},
        {Metric::Mode3Share, "mode_3_share", "mode 3, % of time", 100, 1},
        {Metric::Mode4Share, "mode_4_share", "mode 4, % of time", 100, 1},
        {Metric::Mode5Share, "mode_5_share", "mode 5, % of time", 100, 1},
};
static_assert(std::size(kMetricLabels) == kMetricCount);

constexpr const MetricLabel& labelOf(Metric metric) {
    return kMetricLabels[static_cast<size_t>(metric)];
}

}  // namespace brevold::sim
