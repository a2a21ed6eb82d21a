#include "trace/queued_layer.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace brevold::trace {
namespace {

enum class LayerRule : uint8_t { BufferTx, Slots, CrossesThreads };

/** The first rule that a counter of the compositor meets, as the later ones are less certain. */
LayerRule ruleOf(const Compositor& compositor) {
    LayerRule rule = LayerRule::CrossesThreads;
    for (const CounterTrack& track : compositor.tracks()) {
        if (track.changes.isEmpty()) continue;
        if (track.role == CounterRole::BufferTx) return LayerRule::BufferTx;
        if (track.role == CounterRole::Candidate && track.hasSlots) rule = LayerRule::Slots;
    }
    return rule;
}

struct Threads {
    bool risesElsewhere = false;  // than on the compositor's thread
    bool fallsHere = false;
};

Threads threadsOf(const ChangeList& changes, int32_t compositorTid) {
    Threads threads;
    int64_t last = 0;
    changes.forEach([&](const CounterChange& change) {
        const bool isHere = change.tid == compositorTid;
        threads.risesElsewhere |= change.value > last && !isHere;
        threads.fallsHere |= change.value < last && isHere;
        last = change.value;
    });
    return threads;
}

bool isLayer(const CounterTrack& track, LayerRule rule, Threads threads) {
    if (rule == LayerRule::BufferTx) return track.role == CounterRole::BufferTx;
    if (track.role != CounterRole::Candidate) return false;
    if (rule == LayerRule::Slots) return track.hasSlots;
    // Applications queue on other threads than the one on which the compositor takes the frames.
    return threads.risesElsewhere && threads.fallsHere;
}

std::string nameOf(const CounterTrack& track) {
    const bool hasPrefix = track.role == CounterRole::BufferTx;
    return numberedName(track.name.substr(hasPrefix ? kBufferTxPrefix.size() : 0));
}

bool changesDepth(const ChangeList& changes) {
    bool hasDepth = false;
    changes.forEach([&](const CounterChange& change) { hasDepth |= change.value > 0; });
    return hasDepth;
}

/** Lines of several layers do not come in their order. */
void addLine(int64_t line, LineCount* lines) {
    lines->add(LineCount{1, line});
}

void addOddities(const ChangeList& changes, QueuedLayers* layers) {
    // The first value may be any, as the recording starts at any moment.
    std::optional<int32_t> last;
    changes.forEach([&](const CounterChange& change) {
        const int32_t depth = std::max(change.value, 0);
        const int32_t lastDepth = last.value_or(depth);
        if (change.value < 0) addLine(change.line, &layers->belowZero);
        if (std::abs(depth - lastDepth) > 1) addLine(change.line, &layers->jumps);
        last = depth;
    });
}

void countFrames(QueuedLayer* queued) {
    Layer& layer = queued->layer;
    queued->forEachDepth([&](const DepthChange& change) {
        if (change.kind != DepthChange::Kind::Frame) return;
        if (layer.frames++ == 0) layer.firstFrameNs = change.at.timeNs;
        layer.lastFrameNs = change.at.timeNs;
    });
}

}  // namespace

bool QueuedLayer::takeDepth(DepthChange* change) {
    while (!changes.isEmpty()) {
        if (const auto next = follow(changes.takeFirst(), &depth)) {
            *change = *next;
            return true;
        }
    }
    return false;
}

std::optional<DepthChange> QueuedLayer::follow(const CounterChange& change, int32_t* last) const {
    using Kind = DepthChange::Kind;
    const int32_t newDepth = std::max(change.value, 0);
    const int32_t oldDepth = std::exchange(*last, newDepth);
    if (newDepth == oldDepth) return {};
    const Kind rise = change.tid == compositorTid ? Kind::Other : Kind::Frame;
    return DepthChange{newDepth > oldDepth ? rise : Kind::Latch, change.at(), newDepth};
}

QueuedLayers takeLayers(Compositor& compositor) {
    const LayerRule rule = ruleOf(compositor);
    QueuedLayers found;
    // A rise on the compositor's own thread is its own doing, not a frame of an application. But a
    // trace that was converted from a log without threads has everything on one thread.
    bool hasThreads = false;
    for (CounterTrack& track : compositor.tracks()) {
        const Threads threads = threadsOf(track.changes, compositor.tid());
        if (!isLayer(track, rule, threads) || !changesDepth(track.changes)) continue;
        addOddities(track.changes, &found);
        found.layers.push_back({{nameOf(track), 0}, std::move(track.changes), {}});
        hasThreads |= threads.risesElsewhere;
    }
    for (QueuedLayer& layer : found.layers) {
        if (hasThreads) layer.compositorTid = compositor.tid();
        countFrames(&layer);
    }
    return found;
}

std::string numberedName(std::string layer) {
    const size_t last = layer.find_last_not_of("0123456789");
    const bool hasNumber =
            last != std::string::npos && last + 1 < layer.size() && layer[last] == '#';
    return hasNumber ? layer : layer + "#0";
}

}  // namespace brevold::trace
