#include "sim/sweep_plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "plot/gnuplot.h"
#include "sim/result_parts.h"

namespace brevold::sim {

using plot::gnuplotString;

namespace {

// A cluster that is held at a low point shows fewer frames, and is no alternative.
constexpr double kMinFrames = 0.9;
// The axis of missed vsyncs ends not far beyond the variants, whatever the held points miss.
constexpr double kAxisPerPoint = 1.5;
constexpr double kMinAxis = 10.0;

/** Data blocks and the curves that draw them. */
struct Curves {
    void add(const std::string& rows, const std::string& style, const std::string& title) {
        const std::string block = fmt::format("$data{}", curves.size());
        data += block + " << END\n" + rows + "END\n";
        curves.push_back(fmt::format("{} with {} title {}", block, style, gnuplotString(title)));
    }
    std::string data;
    std::vector<std::string> curves;
};

double finite(double value) {
    return std::isnan(value) ? 0.0 : value;
}

std::string rowOf(const Estimates& estimates) {
    const Estimate& missed = at(estimates, Metric::MissedPerMinute);
    const Estimate& energy = at(estimates, Metric::EnergyRatio);
    return fmt::format("{:.6g} {:.6g} {:.6g} {:.6g}\n", missed.mean, energy.mean,
                       finite(missed.deviation), finite(energy.deviation));
}

std::string frontierRows(const SetupResult& result) {
    const double minFrames = kMinFrames * at(result.off, Metric::FramesPerSecond).mean;
    std::string rows;
    for (const HeldResult& held : result.held) {
        if (at(held.estimates, Metric::FramesPerSecond).mean < minFrames) continue;
        rows += rowOf(held.estimates);
    }
    return rows;
}

}  // namespace

std::string sweepPlotPage(const std::string& terminal, const std::vector<SetupResult>& results) {
    constexpr char kFilledCircle[] = "pt 7";
    constexpr char kSquare[] = "pt 4";
    constexpr char kTriangle[] = "pt 8";
    Curves curves;
    // Points with equal results are nested.
    constexpr double kSizes[] = {2.4, 1.8, 1.2};
    size_t colour = 0;
    double maxMissed = 0.0;
    const auto addPoint = [&](const Estimates& estimates, const std::string& title,
                              const char* point, double size) {
        maxMissed = std::max(maxMissed, at(estimates, Metric::MissedPerMinute).mean);
        curves.add(rowOf(estimates),
                   fmt::format("xyerrorbars lc {} lw 1.5 {} ps {:g}", colour, point, size), title);
    };
    for (const SetupResult& result : results) {
        const std::string setup =
                results.size() > 1 ? shortDescription(result.setup) + ": " : std::string();
        curves.add(frontierRows(result), fmt::format("linespoints lc {} dt 2 pt 1", ++colour),
                   setup + "library off, held at each operating point");
        addPoint(result.off, setup + "library off", kFilledCircle, kSizes[2]);
        for (size_t i = 0; i < result.readings.size(); ++i) {
            const ReadingResult& reading = result.readings[i];
            const std::string title = setup + shortDescription(reading.reading);
            const double size = kSizes[i % std::size(kSizes)];
            ++colour;
            addPoint(reading.given.estimates, title, kSquare, size);
            if (reading.vs) addPoint(reading.vs->estimates, title + ", --vs", kTriangle, size);
        }
    }
    const Setup& first = results.front().setup;
    return fmt::format(
            "set terminal {} size 1600,900 background 'white' noenhanced\n"
            "set title {} noenhanced\n"
            "set key outside right top Left reverse font ',10' noenhanced\nset grid\n"
            "set xrange [0:{:.6g}]\nset xlabel 'vsyncs missed a minute'\n"
            "set ylabel 'energy of both clusters, share of library off'\n"
            "{}plot {}\n",
            terminal,
            gnuplotString(fmt::format("{} on {}, {}: mean and standard deviation over the seeds",
                                      first.workload.name, first.device.name,
                                      shortDescription(first))),
            kAxisPerPoint * maxMissed + kMinAxis, curves.data, fmt::join(curves.curves, ", "));
}

}  // namespace brevold::sim
