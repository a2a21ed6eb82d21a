#include "replay/plot.h"

#include <algorithm>
#include <filesystem>

#include "base/error.h"
#include "base/text.h"
#include "replay/gnuplot.h"
#include "replay/plot_data.h"
#include "replay/plot_page.h"
#include "replay/plot_panels.h"

namespace brevold::replay {

std::string plotTerminal(const std::string& path) {
    const std::string extension = std::filesystem::path(path).extension();
    if (extension == ".svg") return "svg font 'sans,12' fontscale 1.15";
    if (extension == ".png") return "pngcairo font 'sans,10' pointscale 1.6";
    throw OutputError(path + ": the name of a picture must end in .svg or .png");
}

void plot(const std::string& trace, const trace::Timeline& timeline, const Recording& recording,
          const std::string& terminal, std::ostream& out) {
    // gnuplot refuses an empty time axis.
    constexpr double kMinDurationS = 1e-6;
    PlotPage page(std::max(toSeconds(timeline.endNs - timeline.startNs), kMinDurationS));
    addPanels(plotData(timeline, recording), &page);
    const trace::Layer& layer = timeline.layers[timeline.focusedLayer];
    out << runGnuplot(page.script({trace, layer.name, layer.frames}, terminal));
}

}  // namespace brevold::replay
