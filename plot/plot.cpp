#include "plot/plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "base/error.h"
#include "plot/gnuplot.h"
#include "plot/plot_data.h"
#include "plot/plot_page.h"
#include "plot/plot_panels.h"

namespace brevold::plot {

std::string plotTerminal(const std::string& path) {
    const std::string extension = std::filesystem::path(path).extension();
    if (extension == ".svg") return "svg font 'sans,12' fontscale 1.15";
    if (extension == ".png") return "pngcairo font 'sans,10' pointscale 1.6";
    throw OutputError(path + ": the name of a picture must end in .svg or .png");
}

void drawPlot(const std::string& trace, const trace::Timeline& timeline,
              const replay::Recording& recording, const replay::TimeWindow& window,
              const std::string& terminal, std::ostream& out) {
    // gnuplot refuses an empty time axis.
    constexpr double kMinDurationS = 1e-6;
    const PlotData data = plotData(timeline, recording, window);
    PlotPage page(data.fromS, std::max(data.toS, data.fromS + kMinDurationS));
    addPanels(data, &page);
    const std::string layers = fmt::format("{}", fmt::join(data.layers, ", "));
    out << runGnuplot(page.script({trace, layers, data.frames}, terminal));
}

}  // namespace brevold::plot
