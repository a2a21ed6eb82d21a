#pragma once

#include <optional>
#include <vector>

#include "plot/plot_data.h"
#include "sim/observer.h"
#include "sim/simulation.h"

namespace brevold::sim {

/** The curves of a part of one run. Times are seconds since the start of the run. */
struct RunCurves {
    double beginS = 0.0;
    double endS = 0.0;
    plot::PlotPoints frameTimesMs;
    plot::PlotSpans depths;
    std::vector<plot::PlotSpans> frequenciesMhz;  // by cluster; of the two that do work
    plot::PlotSpans capsMhz;                      // on the application's cluster
    plot::PlotSpans powerMw;                      // of the clusters that do work
    plot::PlotSpans downScales;                   // while they are in effect
    plot::PlotPoints ups;                         // scales of UP hints, when they are sent
    plot::PlotSpans boosts;
};

/** Collects the curves of a run, without the first `warmUpNs`. */
class RunCurvesObserver : public Observer {
  public:
    /** `device` must outlive this object. */
    RunCurvesObserver(const Device& device, int64_t warmUpNs);

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
    /** A value that holds until it changes. */
    class Value {
      public:
        void set(int64_t nowNs, std::optional<double> value);

        plot::PlotSpans spans;

      private:
        int64_t mSinceNs = 0;
        std::optional<double> mValue;
    };

    struct Load {
        int32_t busyCores = 0;
        double mw = 0.0;  // of a busy core
        Value mhz;
    };

    void addPoint(int64_t nowNs, double value, plot::PlotPoints& points) const;
    void updatePower(int64_t nowNs);

    const Device& mDevice;
    RunCurves mCurves;
    std::vector<Load> mLoads;
    Value mDepth;
    Value mCap;
    Value mPower;
    Value mDownScale;
    Value mBoost;
};

}  // namespace brevold::sim
