#include "plot/plot_curves.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

#include "plot/plot_thinning.h"

namespace brevold::plot {

PlotCurve CurveMaker::points(const PlotPoints& points, const std::string& style,
                             const std::string& title) const {
    PlotCurve curve = {"", "1:2", style, title};
    for (const PlotPoint& point : thin(points, mBeginS, mEndS, kPlotWidthPx)) {
        curve.rows += std::isnan(point.value)
                              ? "\n"
                              : fmt::format("{:.9g} {:.6g}\n", point.timeS, point.value);
    }
    return curve;
}

PlotCurve CurveMaker::steps(const PlotSpans& spans, const std::string& style,
                            const std::string& title) const {
    PlotPoints corners;
    for (const PlotSpan& span : spans) {
        if (!corners.empty() && corners.back().timeS < span.fromS) {
            corners.push_back({span.fromS, std::numeric_limits<double>::quiet_NaN()});
        }
        corners.push_back({span.fromS, span.value});
        corners.push_back({span.toS, span.value});
    }
    return points(corners, style, title);
}

PlotCurve CurveMaker::edgeMarks(const PlotPoints& points, double y, const std::string& style,
                                const std::string& title) const {
    constexpr int kMarkPx = 12;
    PlotPoints marks;
    if (isDense(points.size(), kMarkPx)) {
        for (const Bin& bin : binPoints(points, grid(kMarkPx)))
            marks.push_back({(bin.fromS + bin.toS) / 2, y});
    } else {
        for (const PlotPoint& point : points)
            marks.push_back({point.timeS, y});
    }
    return this->points(marks, style, title);
}

PlotCurve boxes(const std::vector<PlotBox>& boxes, const std::string& style,
                const std::string& title) {
    PlotCurve curve = {"", "1:3:1:2:3:4", style, title};
    for (const PlotBox& box : boxes)
        curve.rows +=
                fmt::format("{:.9g} {:.9g} {:.6g} {:.6g}\n", box.fromS, box.toS, box.low, box.high);
    return curve;
}

}  // namespace brevold::plot
