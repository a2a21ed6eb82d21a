#include "trace/event_sources.h"

#include <algorithm>
#include <tuple>

namespace brevold::trace {
namespace {

using EventKind = TimelineEvent::Kind;
using Order = PlacedEvent::Order;

/** Latches of one composition are at most this far apart. */
constexpr int64_t kMaxLatchSpanNs = 4'000'000;

class PeriodEvents : public EventSource {
  public:
    explicit PeriodEvents(std::vector<PeriodChange> changes) : mChanges(std::move(changes)) {}

    bool next(PlacedEvent* event) override {
        if (mNext == mChanges.size()) return false;
        const PeriodChange& change = mChanges[mNext++];
        *event = {{change.timeNs, EventKind::Period, 0, 0, 0, change.periodNs}, 0};
        return true;
    }

  private:
    const std::vector<PeriodChange> mChanges;
    size_t mNext = 0;
};

class LayerEvents : public EventSource {
  public:
    LayerEvents(QueuedLayer& layer, int32_t index) : mLayer(layer), mIndex(index) {}

    bool next(PlacedEvent* event) override {
        DepthChange change;
        if (!mLayer.takeDepth(&change)) return false;
        const EventKind kind =
                change.kind == DepthChange::Kind::Frame ? EventKind::Frame : EventKind::Depth;
        *event = {{change.at.timeNs, kind, mIndex, change.depth, change.at.tid, 0}, change.at.line};
        return true;
    }

  private:
    QueuedLayer& mLayer;
    const int32_t mIndex;
};

class CompositionEvents : public EventSource {
  public:
    explicit CompositionEvents(std::deque<Section> compositions)
          : mCompositions(std::move(compositions)) {}

    bool next(PlacedEvent* event) override {
        if (mCompositions.empty()) return false;
        const auto& [kind, pid, begin, end] = mCompositions.front();
        if (!mIsOpen) {
            *event = {{begin.timeNs, EventKind::CompositionBegin, 0, 0, begin.tid, 0},
                      begin.line,
                      Order::Before};
        } else {
            *event = {{end.timeNs, EventKind::CompositionEnd, 0, 0, end.tid, 0},
                      end.line,
                      Order::After};
            mCompositions.pop_front();
        }
        mIsOpen = !mIsOpen;
        return true;
    }

  private:
    std::deque<Section> mCompositions;
    bool mIsOpen = false;  // the first one has begun
};

class PointEvents : public EventSource {
  public:
    PointEvents(EventKind kind, std::deque<TracePoint> points)
          : mKind(kind), mPoints(std::move(points)) {}

    bool next(PlacedEvent* event) override {
        if (mPoints.empty()) return false;
        const TracePoint at = mPoints.front();
        mPoints.pop_front();
        *event = {{at.timeNs, mKind, 0, 0, at.tid, 0}, at.line};
        return true;
    }

  private:
    const EventKind mKind;
    std::deque<TracePoint> mPoints;
};

void sortPoints(std::deque<TracePoint>* points) {
    const auto isEarlier = [](const TracePoint& a, const TracePoint& b) {
        return std::tie(a.timeNs, a.line) < std::tie(b.timeNs, b.line);
    };
    // Most are, and then no time is lost.
    if (std::is_sorted(points->begin(), points->end(), isEarlier)) return;
    std::sort(points->begin(), points->end(), isEarlier);
}

}  // namespace

std::unique_ptr<EventSource> periodEvents(std::vector<PeriodChange> changes) {
    return std::make_unique<PeriodEvents>(std::move(changes));
}

std::unique_ptr<EventSource> layerEvents(QueuedLayer& layer, int32_t index) {
    return std::make_unique<LayerEvents>(layer, index);
}

std::unique_ptr<EventSource> compositionEvents(std::deque<Section> compositions) {
    return std::make_unique<CompositionEvents>(std::move(compositions));
}

std::unique_ptr<EventSource> pointEvents(TimelineEvent::Kind kind, std::deque<TracePoint> points) {
    sortPoints(&points);
    return std::make_unique<PointEvents>(kind, std::move(points));
}

std::deque<Section> compositionsOf(std::deque<TracePoint> latches) {
    sortPoints(&latches);
    std::deque<Section> compositions;
    for (; !latches.empty(); latches.pop_front()) {
        const TracePoint& latch = latches.front();
        const bool isNext = compositions.empty() ||
                            latch.timeNs - compositions.back().begin.timeNs > kMaxLatchSpanNs;
        if (isNext) compositions.push_back({CompositionSource::Latches, 0, latch, latch});
        compositions.back().end = latch;
    }
    return compositions;
}

}  // namespace brevold::trace
