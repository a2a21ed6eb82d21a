#pragma once

#include <string>

#include "plot/plot_bins.h"
#include "plot/plot_data.h"
#include "plot/plot_page.h"

namespace brevold::plot {

/** Makes the curves of a page. Curves with more points than the page has pixels become bins. */
class CurveMaker {
  public:
    CurveMaker(double beginS, double endS) : mBeginS(beginS), mEndS(endS) {}

    /** Returns bins that are `widthPx` pixels wide. */
    BinGrid grid(int widthPx) const { return {mBeginS, mEndS, kPlotWidthPx / widthPx}; }

    /** Returns true if so many curve points are on average less than `widthPx` pixels apart. */
    static bool isDense(size_t points, int widthPx) {
        return points > static_cast<size_t>(kPlotWidthPx / widthPx);
    }

    /** Draws points with a style for points. Thins them; see thin(). */
    PlotCurve points(const PlotPoints& points, const std::string& style,
                     const std::string& title) const;

    /** Draws spans as steps with a style for lines; the line breaks between spans that are apart.
     */
    PlotCurve steps(const PlotSpans& spans, const std::string& style,
                    const std::string& title) const;

    /** Draws marks at `y` for values outside of the axis. Many points share marks. */
    PlotCurve edgeMarks(const PlotPoints& points, double y, const std::string& style,
                        const std::string& title) const;

  private:
    const double mBeginS;
    const double mEndS;
};

/** A rectangle: a span of time and a range of values. */
struct PlotBox {
    double fromS;
    double toS;
    double low;
    double high;
};

/** Draws rectangles; `style` is filled() or framed(). */
PlotCurve boxes(const std::vector<PlotBox>& boxes, const std::string& style,
                const std::string& title);

}  // namespace brevold::plot
