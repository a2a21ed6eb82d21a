#include "report/summary.h"

#include <algorithm>
#include <string_view>

#include "base/text.h"
#include "replay/hint_span.h"

namespace brevold::report {

namespace {

constexpr int kErrorPriority = 6;
constexpr size_t kTopLayers = 5;
// "[FM]gMode:2 \tFPS:\t59.98 ..."
constexpr std::string_view kWindowTag = "[FM]";

/** Counts the events in a window, and follows the focus and the refresh rate to it. */
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

    const trace::Timeline& mTimeline;
    const replay::TimeWindow& mWindow;
    Summary& mSummary;
    size_t mFocus = 0;
    std::vector<int32_t> mFrames;  // of each layer
    std::vector<int32_t> mFramesInFocus;
};

Summary::FrameVerdicts countVerdicts(const trace::Timeline& timeline,
                                     const replay::TimeWindow& window) {
    // A frame may end outside the events of the compositor.
    const replay::TimeWindow wholeTrace = {timeline.startNs, timeline.endNs};
    Summary::FrameVerdicts counts = {0, 0, 0};
    for (const trace::JudgedFrame& frame : *timeline.judgedFrames) {
        if (!window.contains(wholeTrace.clamp(frame.endNs))) continue;
        ++counts.frames;
        counts.late += frame.verdict == trace::FrameVerdict::Late ? 1 : 0;
        counts.dropped += frame.verdict == trace::FrameVerdict::Dropped ? 1 : 0;
    }
    return counts;
}

void sumRequests(const std::vector<host::Hint>& hints, const replay::TimeWindow& window,
                 Summary& summary) {
    for (const host::Hint& hint : hints) {
        if (!window.contains(hint.timeNs)) continue;
        RequestSummary& request = summary.requests[static_cast<size_t>(hint.kind)];
        request.minScale = request.count == 0 ? hint.scale : std::min(request.minScale, hint.scale);
        request.maxScale = std::max(request.maxScale, hint.scale);
        request.meanScale += hint.scale;
        ++request.count;
    }
    for (RequestSummary& request : summary.requests) {
        if (request.count != 0) request.meanScale /= request.count;
    }
}

/** Also counts the rest of a hint that was sent before the window. */
void sumDownTime(const std::vector<replay::HintSpan>& spans, const replay::TimeWindow& window,
                 Summary& summary) {
    for (const replay::HintSpan& span : spans) {
        if (span.hint.kind != host::HintKind::Down) continue;
        const int64_t coveredNs = window.clamp(span.endNs) - window.clamp(span.hint.timeNs);
        summary.downNs += coveredNs;
        summary.meanDownScale += span.hint.scale * toSeconds(coveredNs);
    }
    if (summary.downNs != 0) summary.meanDownScale /= toSeconds(summary.downNs);
}

void sumModes(const std::vector<replay::ModeChange>& modes, const replay::TimeWindow& window,
              Summary& summary) {
    summary.hasModes = !modes.empty();
    for (size_t i = 0; i < modes.size(); ++i) {
        const int64_t untilNs = i + 1 < modes.size() ? modes[i + 1].timeNs : window.endNs;
        summary.modeNs[static_cast<size_t>(modes[i].mode)] +=
                window.clamp(untilNs) - window.clamp(modes[i].timeNs);
    }
}

void sumLog(const std::vector<host::LogLine>& log, const replay::TimeWindow& window,
            Summary& summary) {
    for (const host::LogLine& line : log) {
        if (line.priority != kErrorPriority || !window.contains(line.timeNs)) continue;
        ++summary.errorLines;
        if (line.text.compare(0, kWindowTag.size(), kWindowTag) == 0) {
            ++summary.windowLines;
        } else {
            ++summary.errors[line.text.substr(0, line.text.find('\n'))];
        }
    }
}

}  // namespace

Summary summarise(const std::string& trace, const trace::Timeline& timeline,
                  const replay::Recording& recording, const replay::TimeWindow& window) {
    Summary summary = {};
    summary.trace = trace;
    summary.durationNs = timeline.endNs - timeline.startNs;
    summary.fromNs = window.beginNs - timeline.startNs;
    summary.toNs = window.endNs - timeline.startNs;
    if (timeline.passedOverLayer) {
        summary.passedOverLayer = timeline.layers[*timeline.passedOverLayer].name;
    }
    summary.periodSource = timeline.periodSource;
    summary.periodCounter = timeline.periodCounter;
    summary.compositionSource = timeline.compositionSource;
    summary.boostDepth = recording.options.boostDepth;
    summary.vsyncSource = timeline.vsyncSource;
    if (timeline.judgedFrames) {
        summary.frameVerdicts = countVerdicts(timeline, window);
    }
    summary.warnings = timeline.warnings;
    summary.boostVerdicts = static_cast<int32_t>(
            std::count_if(recording.verdictTimesNs.begin(), recording.verdictTimesNs.end(),
                          [&](int64_t timeNs) { return window.contains(timeNs); }));
    summary.isAnyFeatureOn = recording.isAnyFeatureOn;
    EventCounter(timeline, window, summary).count();
    sumRequests(recording.hints, window, summary);
    sumDownTime(replay::hintSpans(recording.hints, timeline.endNs), window, summary);
    sumModes(recording.modes, window, summary);
    sumLog(recording.log, window, summary);
    return summary;
}

}  // namespace brevold::report
