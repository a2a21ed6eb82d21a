#include "sim/sweep_plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "plot/gnuplot.h"
#include "plot/plot_style.h"
#include "sim/result_parts.h"

namespace brevold::sim {

namespace {

using Texts = std::vector<std::string>;

// A cluster that is held at a low point shows fewer frames, and is no alternative.
constexpr double kMinFrames = 0.9;
// The axes end not far beyond the variants, whatever the held points miss.
constexpr double kAxisPerPoint = 1.3;
constexpr double kMinMissedAxis = 5.0;
constexpr double kEnergyMargin = 0.1;

constexpr const char* kColours[] = {plot::kBlue, plot::kVermillion, plot::kGreen, plot::kPurple,
                                    plot::kOrange};

struct Marker {
    BoostTarget target;
    int filled;
    int open;
};
constexpr Marker kMarkers[] = {
        {BoostTarget::Compositor, 7, 6}, {BoostTarget::All, 5, 4}, {BoostTarget::None, 9, 8}};

const Marker& markerOf(BoostTarget target) {
    return *std::find_if(std::begin(kMarkers), std::end(kMarkers),
                         [=](const Marker& marker) { return marker.target == target; });
}

struct Range {
    double min = std::numeric_limits<double>::infinity();
    double max = 0.0;

    void include(const Estimate& estimate) {
        const double deviation = std::isnan(estimate.deviation) ? 0.0 : estimate.deviation;
        min = std::min(min, estimate.mean - deviation);
        max = std::max(max, estimate.mean + deviation);
    }
};

/** The assumptions of all readings, which are partly the same. */
class Assumptions {
  public:
    explicit Assumptions(const std::vector<SetupResult>& results) {
        for (const SetupResult& result : results) {
            for (const ReadingResult& reading : result.readings)
                mRows.push_back(describeAssumptions(result.setup, reading.reading));
        }
    }

    Texts common() const {
        Texts words;
        for (size_t i = 0; i < mRows.front().size(); ++i) {
            if (isCommon(i)) words.push_back(mRows.front()[i]);
        }
        return words;
    }

    /** The first `count` words without the common ones. */
    Texts different(const Texts& row, size_t count) const {
        Texts words;
        for (size_t i = 0; i < count; ++i) {
            if (!isCommon(i)) words.push_back(row[i]);
        }
        return words;
    }

  private:
    bool isCommon(size_t index) const {
        return std::all_of(mRows.begin(), mRows.end(),
                           [&](const Texts& row) { return row[index] == mRows.front()[index]; });
    }

    std::vector<Texts> mRows;
};

/** The frontier: a row for each held point that takes less energy than all that miss fewer. */
std::vector<std::pair<double, double>> frontierOf(const SetupResult& result) {
    const double minFrames = kMinFrames * at(result.off, Metric::FramesPerSecond).mean;
    std::vector<std::pair<double, double>> points;
    for (const HeldResult& held : result.held) {
        if (at(held.estimates, Metric::FramesPerSecond).mean < minFrames) continue;
        points.emplace_back(at(held.estimates, Metric::MissedPerMinute).mean,
                            at(held.estimates, Metric::EnergyRatio).mean);
    }
    std::sort(points.begin(), points.end());
    std::vector<std::pair<double, double>> frontier;
    for (const auto& point : points) {
        if (frontier.empty() || point.second < frontier.back().second) frontier.push_back(point);
    }
    return frontier;
}

class SweepPage {
  public:
    explicit SweepPage(const std::vector<SetupResult>& results)
          : mResults(results), mAssumptions(results) {
        for (const SetupResult& result : results) {
            include(result.off);
            for (const ReadingResult& reading : result.readings) {
                include(reading.given.estimates);
                if (reading.vs) include(reading.vs->estimates);
            }
        }
        mMaxMissed = std::max(kAxisPerPoint * mMissed.max, kMinMissedAxis);
        mMaxEnergy = mEnergy.max + kEnergyMargin;
        mMinEnergy = std::max(mEnergy.min - kEnergyMargin, 0.0);
    }

    std::string script(const std::string& terminal) {
        for (size_t i = 0; i < mResults.size(); ++i)
            addFrontier(mResults[i], setupColour(i));
        for (size_t i = 0; i < mResults.size(); ++i)
            addPoints(mResults[i], i);
        const Setup& setup = mResults.front().setup;
        const std::string heading = fmt::format(
                "{} on {}: {}; mean and standard deviation over the seeds", setup.workload.name,
                setup.device.name, fmt::join(mAssumptions.common(), ", "));
        constexpr char kExplanation[] =
                "Below a frontier, a variant takes less energy than any operating point that is "
                "held without the library and misses no more vsyncs";
        return fmt::format(
                "set terminal {} size 1600,900 background 'white' noenhanced\n"
                "set title {}.\"\\n\".{}\n"
                "set key outside right top Left reverse spacing 1.4 font ',10'\n"
                "set clip two\nset grid lc rgb '{}' lt 1\nset tics nomirror\nset border 3\n"
                "set xrange [{:.6g}:{:.6g}]\nset xlabel 'vsyncs missed a minute'\n"
                "set yrange [{:.6g}:{:.6g}]\n"
                "set ylabel 'energy of both clusters, share of library off'\n{}plot {}\n",
                terminal, plot::gnuplotString(heading), plot::gnuplotString(kExplanation),
                plot::kGridGrey, -0.02 * mMaxMissed, mMaxMissed, mMinEnergy, mMaxEnergy, mData,
                fmt::join(mCurves, ", "));
    }

  private:
    void include(const Estimates& estimates) {
        mMissed.include(at(estimates, Metric::MissedPerMinute));
        mEnergy.include(at(estimates, Metric::EnergyRatio));
    }

    void addCurve(const std::string& rows, const std::string& style, const std::string& title) {
        const std::string block = fmt::format("$data{}", mCurves.size());
        mData += block + " << END\n" + rows + "END\n";
        mCurves.push_back(
                fmt::format("{} with {} {}", block, style,
                            title.empty() ? "notitle" : "title " + plot::gnuplotString(title)));
    }

    const char* setupColour(size_t index) const {
        return mResults.size() == 1 ? plot::kBlack : kColours[index % std::size(kColours)];
    }

    /** Readings that differ only in the target of a boost have one colour. */
    const char* readingColour(size_t index) const {
        const std::vector<ReadingResult>& readings = mResults.front().readings;
        size_t colour = 0;
        for (size_t i = 1; i <= index; ++i) {
            const Reading& reading = readings[i].reading;
            const Reading& previous = readings[i - 1].reading;
            if (reading.service.down != previous.service.down ||
                reading.boostDepth != previous.boostDepth) {
                ++colour;
            }
        }
        return kColours[colour % std::size(kColours)];
    }

    /** Points with equal results are nested: each is smaller than the one before. */
    static double sizeOf(size_t index, size_t count) {
        return 2.6 - 1.8 * static_cast<double>(index) / static_cast<double>(count);
    }

    std::string titleOf(const SetupResult& result, const std::string& title) const {
        const Texts row = describeAssumptions(result.setup, result.readings.front().reading);
        Texts words = mAssumptions.different(row, kSetupAssumptions);
        words.push_back(title);
        return fmt::format("{}", fmt::join(words, ", "));
    }

    void addFrontier(const SetupResult& result, const char* colour) {
        const auto frontier = frontierOf(result);
        if (frontier.empty()) return;
        constexpr double kFar = 1e9;  // beyond the axes
        std::string corners;
        std::string points;
        double energy = kFar;
        for (const auto& [missed, pointEnergy] : frontier) {
            points += fmt::format("{:.6g} {:.6g}\n", missed, pointEnergy);
            corners +=
                    fmt::format("{0:.6g} {1:.6g}\n{0:.6g} {2:.6g}\n", missed, energy, pointEnergy);
            energy = pointEnergy;
        }
        corners += fmt::format("{:.6g} {:.6g}\n", kFar, energy);
        if (mResults.size() == 1) addBeaten(frontier);
        addCurve(corners, plot::dashed(1.5, colour),
                 titleOf(result, "frontier of the held operating points"));
        addCurve(points, plot::marker(1, 0.8, colour), "");
    }

    /** Shades the side of the frontier where a held point does as well. */
    void addBeaten(const std::vector<std::pair<double, double>>& frontier) {
        // gnuplot fills the wrong side if corners are beyond the axes.
        const auto corner = [this](double missed, double energy) {
            return fmt::format("{:.6g} {:.6g}\n", std::min(missed, mMaxMissed),
                               std::clamp(energy, mMinEnergy, mMaxEnergy));
        };
        std::string corners;
        double energy = mMaxEnergy;
        for (const auto& [missed, pointEnergy] : frontier) {
            corners += corner(missed, energy) + corner(missed, pointEnergy);
            energy = pointEnergy;
        }
        corners += corner(mMaxMissed, energy) + corner(mMaxMissed, mMaxEnergy);
        addCurve(corners, fmt::format("filledcurves closed fc rgb '{}'", plot::kShade),
                 "a held point does as well");
    }

    void addPoint(const Estimates& estimates, const char* colour, int type, double size,
                  const std::string& title) {
        const Estimate& missed = at(estimates, Metric::MissedPerMinute);
        const Estimate& energy = at(estimates, Metric::EnergyRatio);
        const std::string point = fmt::format("{:.6g} {:.6g}", missed.mean, energy.mean);
        if (!std::isnan(missed.deviation)) {
            addCurve(fmt::format("{} {:.6g} {:.6g}\n", point, missed.deviation, energy.deviation),
                     fmt::format("xyerrorbars pt 0 lc rgb '{}'", colour), "");
        }
        addCurve(point + '\n', plot::marker(type, size, colour), title);
    }

    void addPoints(const SetupResult& result, size_t index) {
        constexpr int kStar = 3;
        addPoint(result.off, setupColour(index), kStar, 1.6, titleOf(result, "library off"));
        for (size_t i = 0; i < result.readings.size(); ++i) {
            const ReadingResult& reading = result.readings[i];
            const Texts row = describeAssumptions(result.setup, reading.reading);
            Texts words = mAssumptions.different(row, row.size());
            if (reading.vs || words.empty()) words.emplace_back("as given");
            const Marker& marker = markerOf(reading.reading.service.boost);
            const double size = mResults.size() > 1 ? sizeOf(index, mResults.size())
                                                    : sizeOf(i, result.readings.size());
            const char* colour = mResults.size() > 1 ? setupColour(index) : readingColour(i);
            addPoint(reading.given.estimates, colour, marker.filled, size,
                     fmt::format("{}", fmt::join(words, ", ")));
            if (!reading.vs) continue;
            words.back() = "--vs";
            addPoint(reading.vs->estimates, colour, marker.open, size,
                     fmt::format("{}", fmt::join(words, ", ")));
        }
    }

    const std::vector<SetupResult>& mResults;
    const Assumptions mAssumptions;
    Range mMissed;
    Range mEnergy;
    double mMaxMissed;
    double mMinEnergy;
    double mMaxEnergy;
    std::string mData;
    std::vector<std::string> mCurves;
};

}  // namespace

std::string sweepPlotPage(const std::string& terminal, const std::vector<SetupResult>& results) {
    return SweepPage(results).script(terminal);
}

}  // namespace brevold::sim
