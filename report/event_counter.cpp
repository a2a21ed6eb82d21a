#include "report/event_counter.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace brevold::report {

namespace {

constexpr size_t kTopLayers = 5;

class EventCounter {
  public:
    EventCounter(const trace::Timeline& timeline, const replay::TimeWindow& window,
                 Summary& summary)
          : mTimeline(timeline), mWindow(window), mSummary(summary) {
        mFrames.resize(timeline.layers.size());
        mFramesInFocus.resize(timeline.layers.size());
    }

    void count() {
        setFocus(mTimeline.startNs, mTimeline.focusedLayer);
        for (const trace::TimelineEvent& event : mTimeline.events) {
            if (event.timeNs > mWindow.endNs) break;
            count(event);
        }
        rankLayers();
        sumRateTimes();
    }

  private:
    void count(const trace::TimelineEvent& event) {
        using Kind = trace::TimelineEvent::Kind;
        const int32_t inWindow = mWindow.contains(event.timeNs) ? 1 : 0;
        switch (event.kind) {
            case Kind::Period:
                addChange(event.timeNs, {0, 1e9 / static_cast<double>(event.periodNs)},
                          mSummary.rates);
                break;
            case Kind::Focus:
                setFocus(event.timeNs, static_cast<size_t>(event.layer));
                break;
            case Kind::Frame: {
                const auto layer = static_cast<size_t>(event.layer);
                mFrames[layer] += inWindow;
                if (layer != mFocus) break;
                mFramesInFocus[layer] += inWindow;
                mSummary.focuses.back().frames += inWindow;
                mSummary.frames += inWindow;
                break;
            }
            case Kind::CompositionBegin:
                mSummary.compositions += inWindow;
                break;
            case Kind::Vsync:
                mSummary.vsyncs += inWindow;
                break;
            case Kind::Depth:
            case Kind::CompositionEnd:
                break;
        }
    }

    void setFocus(int64_t timeNs, size_t layer) {
        mFocus = layer;
        addChange(timeNs, {0, mTimeline.layers[layer].name, 0}, mSummary.focuses);
    }

    /** Adds a state from a time on. The state at the start of the window is the first one kept. */
    template <typename State>
    void addChange(int64_t timeNs, State state, std::vector<State>& states) {
        if (timeNs <= mWindow.beginNs) states.clear();
        state.fromNs = mWindow.clamp(timeNs) - mTimeline.startNs;
        states.push_back(std::move(state));
    }

    void rankLayers() {
        std::vector<size_t> layers;
        for (size_t i = 0; i < mFrames.size(); ++i) {
            if (mFrames[i] > 0) layers.push_back(i);
            const int32_t others = mFrames[i] - mFramesInFocus[i];
            mSummary.otherFrames += others;
            mSummary.otherLayers += others > 0 ? 1 : 0;
        }
        std::stable_sort(layers.begin(), layers.end(),
                         [&](size_t a, size_t b) { return mFrames[a] > mFrames[b]; });
        layers.resize(std::min(layers.size(), kTopLayers));
        for (const size_t i : layers)
            mSummary.topLayers.push_back({mTimeline.layers[i].name, mFrames[i]});
    }

    void sumRateTimes() {
        const std::vector<Summary::Rate>& rates = mSummary.rates;
        for (size_t i = 0; i < rates.size(); ++i) {
            const int64_t untilNs = i + 1 < rates.size() ? rates[i + 1].fromNs : mSummary.toNs;
            mSummary.rateNs[std::llround(rates[i].hz)] += untilNs - rates[i].fromNs;
        }
    }

    const trace::Timeline& mTimeline;
    const replay::TimeWindow& mWindow;
    Summary& mSummary;
    size_t mFocus = 0;
    std::vector<int32_t> mFrames;  // of each layer
    std::vector<int32_t> mFramesInFocus;
};

}  // namespace

void countEvents(const trace::Timeline& timeline, const replay::TimeWindow& window,
                 Summary& summary) {
    EventCounter(timeline, window, summary).count();
}

}  // namespace brevold::report
