#include "plot/plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "base/error.h"
#include "plot/gnuplot.h"
#include "plot/plot_data.h"
#include "plot/plot_page.h"
#include "plot/plot_text.h"
#include "plot/scale_panel.h"
#include "plot/trace_panels.h"

namespace brevold::plot {

namespace {

std::vector<std::string> headingOf(const Plot& plot, const PlotData& data) {
    std::string frames = data.frames == 1 ? "1 frame" : fmt::format("{} frames", data.frames);
    if (data.frames > 1) {
        frames += fmt::format(", the first at {:.3f} s and the last at {:.3f} s", data.firstFrameS,
                              data.lastFrameS);
    }
    const double durationS = data.toS - data.fromS;
    std::vector<std::string> heading = {
            std::filesystem::path(plot.trace).filename().string(),
            fmt::format("{}", fmt::join(data.layers, ", ")),
            fmt::format("{}; the picture shows {}, one pixel {}", frames, durationText(durationS),
                        durationText(durationS / kPlotWidthPx))};
    if (plot.second != nullptr) {
        heading.push_back(fmt::format("in colour: as given; in black: with --vs {}",
                                      fmt::join(plot.secondSettings, " --vs ")));
    }
    return heading;
}

}  // namespace

std::string plotTerminal(const std::string& path) {
    const std::string extension = std::filesystem::path(path).extension();
    if (extension == ".svg") return "svg font 'sans,12' fontscale 1.15";
    if (extension == ".png") return "pngcairo font 'sans,10' pointscale 1.6";
    throw OutputError(path + ": the name of a picture must end in .svg or .png");
}

void drawPlot(const Plot& plot, const std::string& terminal, std::ostream& out) {
    std::vector<const replay::Recording*> recordings = {&plot.recording};
    if (plot.second != nullptr) recordings.push_back(plot.second);
    PlotData data = plotData(plot.timeline, recordings, plot.window);
    // gnuplot refuses an empty time axis.
    constexpr double kMinDurationS = 1e-6;
    data.toS = std::max(data.toS, data.fromS + kMinDurationS);
    PlotPage page = {headingOf(plot, data), data.fromS, data.toS, unclassifiedSpans(data), {}};
    page.panels = {intervalPanel(data), missedRefreshPanel(data), depthPanel(data),
                   modePanel(data),     scalePanel(data),         boostPanel(data)};
    if (!plot.marks.empty()) {
        page.panels.push_back(markPanel(data, plot.marks, plot.timeline.startNs));
    }
    page.panels.push_back(ratePanel(data));
    out << runGnuplot(gnuplotScript(page, terminal));
}

}  // namespace brevold::plot
