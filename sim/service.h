#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "host/hint.h"
#include "sim/cluster.h"

namespace brevold::sim {

/**
 * The performance service: holds the hints that are in effect and turns the governor's choice into
 * an operating point. A newer DOWN or UP replaces the one before; each ends after its duration. A
 * boost ends with its release, or after its duration. On a cluster that it targets, a boost
 * overrides DOWN and UP.
 */
class Service {
  public:
    explicit Service(const ServiceSpec& spec) : mSpec(spec) {}

    /** Takes a hint. `frameMhz` is the mean frequency during the frame that was reported last. */
    void receive(const host::Hint& hint, double frameMhz, int64_t nowNs);

    /** The next time at which a hint ends by itself; kNever if there is none. */
    int64_t nextExpiryNs() const;
    void expire(int64_t nowNs);

    bool isBoosted() const { return mBoostEndNs != kNever; }
    /** The scale of the DOWN hint in effect. */
    std::optional<double> downScale() const;

    /** The cap on the frequency of the application's cluster, before it is rounded up to a point.
     */
    std::optional<double> capMhz(const ClusterSpec& cluster) const;

    /** The point for a cluster whose governor chooses `governorPoint`. */
    size_t pointFor(const ClusterSpec& cluster, bool hasApp, bool hasCompositor,
                    size_t governorPoint) const;

  private:
    struct Scaling {
        host::HintKind kind;  // Down or Up
        double scale;
        double frameMhz;
        int64_t endNs;
    };

    size_t scaledPoint(const ClusterSpec& cluster, size_t governorPoint) const;

    const ServiceSpec& mSpec;
    std::optional<Scaling> mScaling;
    int64_t mBoostEndNs = kNever;
};

}  // namespace brevold::sim
