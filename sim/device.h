#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/settings.h"

/**
 * The simulated device: processor clusters, frequency governor, performance service and display.
 * A device file has key=value lines; docs/effect.md explains where a phone's own figures are.
 *
 *   cluster.big.opp=844.8 MHz 172.2 mW   an operating point: power of one busy core; repeatable
 *   cluster.big.opp=903 MHz 700 mV       or its voltage, with the coefficient below
 *   cluster.big.coefficient=550          microwatts per MHz and square volt
 *   cluster.big.memory-share=0.2         share of the work that does not scale with frequency
 *   cluster.big.static-mw=12             power of the cluster at any time
 *   cluster.big.cpus=4-6,7               its processors in a trace
 *   app.cluster=big                      where the application runs
 *   compositor.cluster=little            where the compositor runs
 *   compositor.work-ms=1.2               work of a composition at the maximum frequency
 *   governor=schedutil                   or performance, or fixed
 *   governor.headroom=1.25               schedutil: frequency per utilisation
 *   governor.half-life-ms=32             of the utilisation
 *   governor.tick-ms=4                   between two evaluations of a busy core
 *   governor.up-limit-ms=0.5             from a change of frequency to a rise
 *   governor.down-limit-ms=5             from a change of frequency to a fall
 *   governor.util-est=1                  1: a waking task keeps the utilisation of its last runs
 *   governor.floor=0                     lowest frequency, as a share of the maximum
 *   governor.background=0                utilisation by other tasks, which the governor adds
 *   governor.fixed-share=1               fixed: frequency as a share of the maximum
 *   service.down=cap                     or governor, or frame: see DownReading
 *   service.up=governor                  or none: see UpReading
 *   service.boost=compositor             or all, or none: see BoostTarget
 *   service.latency-ms=0.3               from a hint to its effect
 *   display.buffers=3                    instead of the workload's number of buffers
 *   display.latch-ms=0.5                 from a vsync to the latch
 *   trace.speed=1                        of a recording without frequencies, as a share of the
 *                                        maximum
 */
namespace brevold::sim {

struct OperatingPoint {
    double mhz;
    double mw;
};

struct ClusterSpec {
    std::string name;
    std::vector<OperatingPoint> points;  // by rising frequency
    double memoryShare = 0.0;
    double staticMw = 0.0;
    std::vector<int32_t> cpus;  // numbers of its processors; may be empty

    double maxMhz() const { return points.back().mhz; }

    /** Speed as a share of the speed at the maximum frequency. */
    double speedAtMhz(double mhz) const;
    double speedAt(size_t point) const { return speedAtMhz(points[point].mhz); }

    /** The lowest point with at least this frequency; the highest point if there is none. */
    size_t pointForMhz(double mhz) const;
};

enum class GovernorKind : uint8_t { Schedutil, Performance, Fixed };

struct GovernorSpec {
    GovernorKind kind = GovernorKind::Schedutil;
    double headroom = 1.25;
    int64_t halfLifeNs = 32'000'000;
    int64_t tickNs = 4'000'000;
    int64_t upLimitNs = 500'000;
    int64_t downLimitNs = 5'000'000;
    bool hasUtilEst = true;
    double floor = 0.0;
    double background = 0.0;
    double fixedShare = 1.0;
};

/** How the service reads the scale of a DOWN hint, which limits the application's cluster. */
enum class DownReading : uint8_t {
    Cap,       // that share of the maximum frequency
    Governor,  // that share of the frequency that the governor chooses
    Frame,     // that share of the mean frequency during the measured frame
};

/** How the service reads the scale of an UP hint. */
enum class UpReading : uint8_t {
    Governor,  // that multiple of the frequency that the governor chooses
    None,      // not at all
};

/** The clusters that a jank boost raises to their maximum frequency. */
enum class BoostTarget : uint8_t { Compositor, All, None };

struct ServiceSpec {
    DownReading down = DownReading::Cap;
    UpReading up = UpReading::Governor;
    BoostTarget boost = BoostTarget::Compositor;
    int64_t latencyNs = 300'000;
};

struct Device {
    std::string name;
    std::vector<ClusterSpec> clusters;
    size_t appCluster = 0;
    size_t compositorCluster = 0;
    int64_t compositionWorkNs = 1'200'000;
    GovernorSpec governor;
    ServiceSpec service;
    std::optional<int32_t> buffers;
    int64_t latchNs = 500'000;
    double recordedSpeed = 1.0;

    /** The cluster of a processor; none if no cluster has its number. */
    std::optional<size_t> clusterOf(int32_t cpu) const;
};

extern const Words<GovernorKind> kGovernorWords;
extern const Words<DownReading> kDownWords;
extern const Words<UpReading> kUpWords;
extern const Words<BoostTarget> kBoostWords;

/**
 * Reads a device file, then applies `settings` ("key=value") to it as if they were its last lines.
 * Throws InputError.
 */
Device readDevice(const std::string& path, const std::vector<std::string>& settings);

/** The same from a text; `name` is for messages. */
Device parseDevice(std::string_view text, const std::string& name,
                   const std::vector<std::string>& settings);

}  // namespace brevold::sim
