#include "plot/plot_data.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/text.h"
#include "replay/hint_span.h"

namespace brevold::plot {

namespace {

constexpr double kBreak = std::numeric_limits<double>::quiet_NaN();

class DataBuilder {
  public:
    DataBuilder(const trace::Timeline& timeline, const replay::TimeWindow& window)
          : mTimeline(timeline), mWindow(window), mDepths(timeline.layers.size()) {}

    PlotData build(const replay::Recording& recording) {
        mData.fromS = sinceStart(mWindow.beginNs);
        mData.toS = sinceStart(mWindow.endNs);
        setFocus(mTimeline.startNs, mTimeline.focusedLayer);
        for (const trace::TimelineEvent& event : mTimeline.events) {
            if (event.timeNs > mWindow.endNs) break;
            add(event);
        }
        for (const replay::ModeChange& change : recording.modes) {
            if (change.timeNs <= mWindow.endNs) addStep(change.timeNs, change.mode, mData.modes);
        }
        for (PlotPoints* steps : {&mData.depths, &mData.periodsMs, &mData.ratesHz, &mData.modes}) {
            if (!steps->empty()) steps->push_back({mData.toS, steps->back().value});
        }
        addHints(recording.hints);
        return std::move(mData);
    }

  private:
    double sinceStart(int64_t timeNs) const { return toSeconds(timeNs - mTimeline.startNs); }

    void add(const trace::TimelineEvent& event) {
        using Kind = trace::TimelineEvent::Kind;
        const auto layer = static_cast<size_t>(event.layer);
        if (event.kind == Kind::Period) {
            const auto periodNs = static_cast<double>(event.periodNs);
            addStep(event.timeNs, periodNs / 1e6, mData.periodsMs);
            addStep(event.timeNs, 1e9 / periodNs, mData.ratesHz);
        } else if (event.kind == Kind::Focus) {
            setFocus(event.timeNs, layer);
        } else if (event.kind == Kind::Frame || event.kind == Kind::Depth) {
            mDepths[layer] = event.depth;
            if (layer != mFocus) return;
            addStep(event.timeNs, event.depth, mData.depths);
            if (event.kind == Kind::Frame) addFrame(event.timeNs);
        }
    }

    void setFocus(int64_t timeNs, size_t layer) {
        mFocus = layer;
        mHasFrame = false;
        addStep(timeNs, mDepths[layer], mData.depths);
        std::vector<std::string>& names = mData.layers;
        if (timeNs <= mWindow.beginNs) names.clear();
        const std::string& name = mTimeline.layers[layer].name;
        if (std::count(names.begin(), names.end(), name) == 0) names.push_back(name);
    }

    /** Adds a value from a time on. The value at the start of the window is the first one kept. */
    void addStep(int64_t timeNs, double value, PlotPoints& steps) {
        if (timeNs <= mWindow.beginNs) steps.clear();
        steps.push_back({sinceStart(mWindow.clamp(timeNs)), value});
    }

    void addFrame(int64_t timeNs) {
        if (mWindow.contains(timeNs)) {
            ++mData.frames;
            if (mHasFrame) {
                mData.frameIntervalsMs.push_back(
                        {sinceStart(timeNs), toSeconds(timeNs - mLastFrameNs) * 1e3});
            }
        }
        mHasFrame = true;
        mLastFrameNs = timeNs;
    }

    void addHints(const std::vector<host::Hint>& hints) {
        for (const replay::HintSpan& span : replay::hintSpans(hints, mTimeline.endNs)) {
            const bool isSentInWindow = mWindow.contains(span.hint.timeNs);
            if (span.hint.kind == host::HintKind::Down) {
                mData.downs += isSentInWindow ? 1 : 0;
                if (span.hint.timeNs <= mWindow.endNs && span.endNs >= mWindow.beginNs) {
                    addDown(sinceStart(mWindow.clamp(span.hint.timeNs)),
                            sinceStart(mWindow.clamp(span.endNs)), span.hint.scale);
                }
            } else if (isSentInWindow) {
                addPoint(span.hint);
            }
        }
    }

    void addPoint(const host::Hint& hint) {
        const double timeS = sinceStart(hint.timeNs);
        switch (hint.kind) {
            case host::HintKind::Up:
                mData.upScales.push_back({timeS, hint.scale});
                break;
            case host::HintKind::JankBoost:
                mData.boosts.push_back({timeS, hint.scale});
                break;
            case host::HintKind::RefreshRate:
                mData.rateHintsHz.push_back({timeS, static_cast<double>(hint.type)});
                break;
            case host::HintKind::Down:
            case host::HintKind::Release:
                break;
        }
    }

    void addDown(double fromS, double toS, double scale) {
        PlotPoints& points = mData.downScales;
        if (!points.empty() && points.back().timeS < fromS) points.push_back({fromS, kBreak});
        points.push_back({fromS, scale});
        points.push_back({toS, scale});
    }

    const trace::Timeline& mTimeline;
    const replay::TimeWindow& mWindow;
    PlotData mData = {};
    std::vector<int32_t> mDepths;  // of each layer
    size_t mFocus = 0;
    bool mHasFrame = false;
    int64_t mLastFrameNs = 0;
};

}  // namespace

PlotData plotData(const trace::Timeline& timeline, const replay::Recording& recording,
                  const replay::TimeWindow& window) {
    return DataBuilder(timeline, window).build(recording);
}

}  // namespace brevold::plot
