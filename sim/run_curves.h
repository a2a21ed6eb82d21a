#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "plot/plot_data.h"
#include "sim/observer.h"
#include "sim/simulation.h"

namespace brevold::sim {

/** The curves of one run. Times are seconds since its start. */
struct RunCurves {
    struct Span {
        double beginS;
        double endS;
    };

    double endS = 0.0;
    plot::PlotPoints frameTimesMs;
    plot::PlotPoints depths;
    std::vector<plot::PlotPoints> frequenciesMhz;  // by cluster
    plot::PlotPoints powerMw;                      // of all clusters, mean of equal spans of time
    plot::PlotPoints downScales;                   // while they are in effect
    plot::PlotPoints ups;                          // scales of UP hints, when they are sent
    std::vector<Span> boosts;
};

/** Collects the curves of a run. */
class RunCurvesObserver : public Observer {
  public:
    /** `scenario` must outlive this object. Power has `columns` points. */
    RunCurvesObserver(const Scenario& scenario, size_t columns);

    /** Valid after the end of the run. */
    const RunCurves& curves() const { return mCurves; }

    void onTask(int64_t nowNs, Task task, size_t cluster, bool isBusy) override;
    void onFrequency(int64_t nowNs, size_t cluster, const OperatingPoint& point) override;
    void onQueue(int64_t nowNs, const Frame& frame, int32_t depth) override;
    void onLatch(int64_t nowNs, const Frame& frame, int32_t depth) override;
    void onHint(const host::Hint& hint) override;
    void onService(int64_t nowNs, const Service& service) override;
    void onEnd(int64_t nowNs) override;

  private:
    struct Load {
        int32_t busyCores = 0;
        double mw = 0.0;  // of a busy core
        int64_t sinceNs = kStartNs;
    };

    /** Ends the curve of DOWN with a break, unless it has one. */
    void breakDown(double nowS);
    void addEnergy(int64_t nowNs, size_t cluster);

    const Scenario& mScenario;
    const double mColumnNs;
    RunCurves mCurves;
    std::vector<Load> mLoads;
    std::vector<double> mEnergy;  // mW times nanoseconds, by column
    std::optional<double> mBoostBeginS;
};

}  // namespace brevold::sim
