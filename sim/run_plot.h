#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "replay/plot_data.h"
#include "sim/observer.h"
#include "sim/simulation.h"

namespace brevold::sim {

/**
 * Collects the curves of one run and draws them as gnuplot panels, one above the other: frame time,
 * queue depth, frequency of each cluster, power, hints.
 */
class RunPlot : public Observer {
  public:
    /** `scenario` must outlive this object. */
    explicit RunPlot(const Scenario& scenario);

    /** Height of the panels of one run. */
    static int heightPx();

    /**
     * The panels as lines of a gnuplot multiplot. `index` counts the runs on the page from above,
     * of `count`; `title` names this one.
     */
    std::string script(size_t index, size_t count, const std::string& title) const;

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
        int64_t sinceNs = 0;
    };
    struct Span {
        double beginS;
        double endS;
    };

    void addEnergy(int64_t nowNs, size_t cluster);
    replay::PlotPoints powerMw() const;

    const Scenario& mScenario;
    const int64_t mEndNs;
    std::vector<Load> mLoads;
    std::vector<double> mEnergy;  // mW times nanoseconds, by pixel column
    replay::PlotPoints mFrameTimesMs;
    replay::PlotPoints mDepths;
    std::vector<replay::PlotPoints> mFrequencies;  // by cluster
    replay::PlotPoints mDownScales;                // while they are in effect
    replay::PlotPoints mUps;
    std::vector<Span> mBoosts;
    std::optional<double> mBoostBeginS;
};

/** A whole page from the panels of its runs. */
std::string runPlotPage(const std::string& terminal, const std::string& heading,
                        const std::vector<std::string>& panels);

}  // namespace brevold::sim
