#include "replay/plot_data.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/text.h"
#include "replay/hint_span.h"

namespace brevold::replay {

namespace {

constexpr double kBreak = std::numeric_limits<double>::quiet_NaN();

class DataMaker {
  public:
    explicit DataMaker(const trace::Timeline& timeline) : mTimeline(timeline) {}

    PlotData make(const Recording& recording) {
        mData.depths.push_back({0, 0});
        for (const trace::TimelineEvent& event : mTimeline.events) {
            if (event.kind == trace::TimelineEvent::Kind::Frame ||
                event.kind == trace::TimelineEvent::Kind::Depth) {
                addDepth(event);
            } else if (event.kind == trace::TimelineEvent::Kind::Period) {
                const double timeS = at(event.timeNs);
                const auto periodNs = static_cast<double>(event.periodNs);
                mData.periodsMs.push_back({timeS, periodNs / 1e6});
                mData.ratesHz.push_back({timeS, 1e9 / periodNs});
            }
        }
        for (const ModeChange& change : recording.modes) {
            mData.modes.push_back({at(change.timeNs), static_cast<double>(change.mode)});
        }
        for (PlotPoints* steps : {&mData.depths, &mData.periodsMs, &mData.ratesHz, &mData.modes}) {
            if (!steps->empty()) steps->push_back({at(mTimeline.endNs), steps->back().value});
        }
        addHints(recording.hints);
        return std::move(mData);
    }

  private:
    double at(int64_t timeNs) const { return toSeconds(timeNs - mTimeline.startNs); }

    void addDepth(const trace::TimelineEvent& event) {
        if (static_cast<size_t>(event.layer) != mTimeline.focusedLayer) return;
        mData.depths.push_back({at(event.timeNs), static_cast<double>(event.depth)});
        if (event.kind != trace::TimelineEvent::Kind::Frame) return;
        if (mHasFrame) {
            mData.frameIntervalsMs.push_back(
                    {at(event.timeNs), toSeconds(event.timeNs - mLastFrameNs) * 1e3});
        }
        mHasFrame = true;
        mLastFrameNs = event.timeNs;
    }

    void addHints(const std::vector<host::Hint>& hints) {
        for (const HintSpan& span : hintSpans(hints, mTimeline.endNs)) {
            const double timeS = at(span.hint.timeNs);
            switch (span.hint.kind) {
                case host::HintKind::Down:
                    ++mData.downs;
                    addDown(timeS, at(span.endNs), span.hint.scale);
                    break;
                case host::HintKind::Up:
                    mData.upScales.push_back({timeS, span.hint.scale});
                    break;
                case host::HintKind::JankBoost:
                    mData.boosts.push_back({timeS, span.hint.scale});
                    break;
                case host::HintKind::RefreshRate:
                    mData.rateHintsHz.push_back({timeS, static_cast<double>(span.hint.type)});
                    break;
                case host::HintKind::Release:
                    break;
            }
        }
    }

    void addDown(double fromS, double toS, double scale) {
        PlotPoints& points = mData.downScales;
        if (!points.empty() && points.back().timeS < fromS) points.push_back({fromS, kBreak});
        points.push_back({fromS, scale});
        points.push_back({toS, scale});
    }

    const trace::Timeline& mTimeline;
    PlotData mData;
    bool mHasFrame = false;
    int64_t mLastFrameNs = 0;
};

/** Appends what is kept of the points of one column, which hold no break. */
void keepExtremes(const PlotPoint* first, const PlotPoint* end, PlotPoints* kept) {
    const auto byValue = [](const PlotPoint& a, const PlotPoint& b) { return a.value < b.value; };
    const auto [least, most] = std::minmax_element(first, end, byValue);
    const PlotPoint* last = nullptr;
    for (const PlotPoint* point : {first, std::min(least, most), std::max(least, most), end - 1}) {
        if (point != last) kept->push_back(*point);
        last = point;
    }
}

}  // namespace

PlotData plotData(const trace::Timeline& timeline, const Recording& recording) {
    return DataMaker(timeline).make(recording);
}

PlotPoints thin(const PlotPoints& points, double endS, int32_t columns) {
    const double columnS = std::max(endS / columns, std::numeric_limits<double>::min());
    const auto columnOf = [&](const PlotPoint& point) { return std::floor(point.timeS / columnS); };
    PlotPoints joined;
    for (size_t i = 0; i < points.size(); ++i) {
        const bool isBreak = std::isnan(points[i].value);
        if (isBreak && points[i + 1].timeS - points[i - 1].timeS < columnS) continue;
        joined.push_back(points[i]);
    }
    PlotPoints kept;
    for (size_t first = 0; first < joined.size();) {
        size_t end = first + 1;
        if (!std::isnan(joined[first].value)) {
            while (end < joined.size() && !std::isnan(joined[end].value) &&
                   columnOf(joined[end]) == columnOf(joined[first])) {
                ++end;
            }
        }
        keepExtremes(&joined[first], &joined[first] + (end - first), &kept);
        first = end;
    }
    return kept;
}

}  // namespace brevold::replay
