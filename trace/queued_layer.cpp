#include "trace/queued_layer.h"

namespace brevold::trace {
namespace {

enum class LayerRule : uint8_t { BufferTx, Slots, CrossesThreads };

/** The first rule that a counter of the compositor meets, as the later ones are less certain. */
LayerRule ruleOf(const Compositor& compositor) {
    LayerRule rule = LayerRule::CrossesThreads;
    for (const CounterTrack& track : compositor.tracks()) {
        if (compositor.changesOf(track).empty()) continue;
        if (track.role == CounterRole::BufferTx) return LayerRule::BufferTx;
        if (track.role == CounterRole::Candidate && track.hasSlots) rule = LayerRule::Slots;
    }
    return rule;
}

bool risesElsewhere(const Compositor::Changes& changes, int32_t compositorTid) {
    int64_t last = 0;
    return std::any_of(changes.begin(), changes.end(), [&](const CounterChange& change) {
        const bool isRise = change.value > last;
        last = change.value;
        return isRise && change.tid != compositorTid;
    });
}

bool fallsHere(const Compositor::Changes& changes, int32_t compositorTid) {
    int64_t last = 0;
    return std::any_of(changes.begin(), changes.end(), [&](const CounterChange& change) {
        const bool isFall = change.value < last;
        last = change.value;
        return isFall && change.tid == compositorTid;
    });
}

bool isLayer(const CounterTrack& track, const Compositor& compositor, LayerRule rule) {
    if (rule == LayerRule::BufferTx) return track.role == CounterRole::BufferTx;
    if (track.role != CounterRole::Candidate) return false;
    if (rule == LayerRule::Slots) return track.hasSlots;
    // Applications queue on other threads than the one on which the compositor takes the frames.
    return risesElsewhere(track.changes, compositor.tid()) &&
           fallsHere(track.changes, compositor.tid());
}

std::string nameOf(const CounterTrack& track) {
    const bool hasPrefix = track.role == CounterRole::BufferTx;
    return numberedName(track.name.substr(hasPrefix ? kBufferTxPrefix.size() : 0));
}

QueuedLayer layerOf(const CounterTrack& track) {
    QueuedLayer layer{nameOf(track), {}, {}, &track.changes, {}};
    int32_t last = 0;
    for (const CounterChange& change : track.changes) {
        const int32_t depth = std::max(change.value, 0);
        if (change.value < 0) layer.belowZero.add(change.line);
        // The first value may be any, as the recording starts at any moment.
        const bool isFirst = &change == track.changes.data();
        if (!isFirst && (depth > last ? depth - last : last - depth) > 1) {
            layer.jumps.add(change.line);
        }
        last = depth;
    }
    return layer;
}

bool changesDepth(const Compositor::Changes& changes) {
    return std::any_of(changes.begin(), changes.end(),
                       [](const CounterChange& change) { return change.value > 0; });
}

}  // namespace

std::vector<QueuedLayer> findLayers(const Compositor& compositor) {
    const LayerRule rule = ruleOf(compositor);
    std::vector<QueuedLayer> layers;
    // A rise on the compositor's own thread is its own doing, not a frame of an application. But a
    // trace that was converted from a log without threads has everything on one thread.
    bool hasThreads = false;
    for (const CounterTrack& track : compositor.tracks()) {
        const Compositor::Changes& changes = compositor.changesOf(track);
        if (!isLayer(track, compositor, rule) || !changesDepth(changes)) continue;
        layers.push_back(layerOf(track));
        hasThreads = hasThreads || risesElsewhere(changes, compositor.tid());
    }
    for (QueuedLayer& layer : layers) {
        if (hasThreads) layer.compositorTid = compositor.tid();
    }
    return layers;
}

std::string numberedName(std::string layer) {
    const size_t last = layer.find_last_not_of("0123456789");
    const bool hasNumber =
            last != std::string::npos && last + 1 < layer.size() && layer[last] == '#';
    return hasNumber ? layer : layer + "#0";
}

}  // namespace brevold::trace
