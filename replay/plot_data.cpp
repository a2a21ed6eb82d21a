#include "replay/plot_data.h"

#include <limits>
#include <utility>

#include "base/text.h"
#include "replay/hint_span.h"

namespace brevold::replay {

namespace {

constexpr double kBreak = std::numeric_limits<double>::quiet_NaN();

class DataBuilder {
  public:
    explicit DataBuilder(const trace::Timeline& timeline) : mTimeline(timeline) {}

    PlotData build(const Recording& recording) {
        mData.depths.push_back({0, 0});
        for (const trace::TimelineEvent& event : mTimeline.events) {
            if (event.kind == trace::TimelineEvent::Kind::Frame ||
                event.kind == trace::TimelineEvent::Kind::Depth) {
                addDepth(event);
            } else if (event.kind == trace::TimelineEvent::Kind::Period) {
                const double timeS = sinceStart(event.timeNs);
                const auto periodNs = static_cast<double>(event.periodNs);
                mData.periodsMs.push_back({timeS, periodNs / 1e6});
                mData.ratesHz.push_back({timeS, 1e9 / periodNs});
            }
        }
        for (const ModeChange& change : recording.modes) {
            mData.modes.push_back({sinceStart(change.timeNs), static_cast<double>(change.mode)});
        }
        for (PlotPoints* steps : {&mData.depths, &mData.periodsMs, &mData.ratesHz, &mData.modes}) {
            if (!steps->empty()) {
                steps->push_back({sinceStart(mTimeline.endNs), steps->back().value});
            }
        }
        addHints(recording.hints);
        return std::move(mData);
    }

  private:
    double sinceStart(int64_t timeNs) const { return toSeconds(timeNs - mTimeline.startNs); }

    void addDepth(const trace::TimelineEvent& event) {
        if (static_cast<size_t>(event.layer) != mTimeline.focusedLayer) return;
        mData.depths.push_back({sinceStart(event.timeNs), static_cast<double>(event.depth)});
        if (event.kind != trace::TimelineEvent::Kind::Frame) return;
        if (mHasFrame) {
            mData.frameIntervalsMs.push_back(
                    {sinceStart(event.timeNs), toSeconds(event.timeNs - mLastFrameNs) * 1e3});
        }
        mHasFrame = true;
        mLastFrameNs = event.timeNs;
    }

    void addHints(const std::vector<host::Hint>& hints) {
        for (const HintSpan& span : hintSpans(hints, mTimeline.endNs)) {
            const double timeS = sinceStart(span.hint.timeNs);
            switch (span.hint.kind) {
                case host::HintKind::Down:
                    ++mData.downs;
                    addDown(timeS, sinceStart(span.endNs), span.hint.scale);
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

}  // namespace

PlotData plotData(const trace::Timeline& timeline, const Recording& recording) {
    return DataBuilder(timeline).build(recording);
}

}  // namespace brevold::replay
