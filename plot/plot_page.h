#pragma once

#include <cstdint>
#include <string>

#include "plot/plot_data.h"

namespace brevold::plot {

struct PlotHeading {
    std::string trace;
    std::string layers;
    int32_t frames;
};

/**
 * The layout of a picture, as a gnuplot script: a heading, and panels one below the other with a
 * common time axis. Add the panels from top to bottom, each between beginPanel() and endPanel().
 */
class PlotPage {
  public:
    /** The time axis is from `beginS` to `endS` seconds. */
    PlotPage(double beginS, double endS) : mBeginS(beginS), mEndS(endS) {}

    /** `settings` are lines of gnuplot for this panel. */
    void beginPanel(const char* title, int heightPx, const std::string& settings);
    void endPanel();

    /** `style` is a gnuplot style, as "points pt 7". Long curves are thinned. */
    void addCurve(const PlotPoints& points, const std::string& style, const std::string& title);

    /** Adds a curve from data in gnuplot's notation, one point per line. */
    void addRows(const std::string& rows, const std::string& style, const std::string& title);

    /** Writes a text across the middle of the panel. */
    void addNote(const std::string& text);

    /** Returns the whole script. */
    std::string script(const PlotHeading& heading, const std::string& terminal) const;

  private:
    static constexpr int kFirstPanelTopPx = 96;

    std::string headingScript(const PlotHeading& heading) const;

    const double mBeginS;
    const double mEndS;
    std::string mPanels;
    std::string mCurves;
    int mTopPx = kFirstPanelTopPx;
    int mBlocks = 0;
    bool mIsThinned = false;
};

}  // namespace brevold::plot
