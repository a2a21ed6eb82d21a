#include "trace/queued_layer.h"

#include <algorithm>
#include <limits>

namespace brevold::trace {
namespace {

/** Applications queue on other threads than the one on which the compositor takes the frames. */
bool crossesThreads(const Compositor::Values& changes, int32_t compositorTid) {
    bool risesElsewhere = false;
    bool fallsHere = false;
    int64_t last = 0;
    for (const CounterValue& change : changes) {
        risesElsewhere |= change.value > last && change.at.tid != compositorTid;
        fallsHere |= change.value < last && change.at.tid == compositorTid;
        last = change.value;
    }
    return risesElsewhere && fallsHere;
}

std::string nameOf(const CounterTrack& track) {
    const bool hasPrefix = track.role == CounterRole::BufferTx;
    return numberedName(track.name.substr(hasPrefix ? kBufferTxPrefix.size() : 0));
}

int32_t depthOf(int64_t value) {
    return static_cast<int32_t>(std::clamp<int64_t>(value, 0, std::numeric_limits<int32_t>::max()));
}

QueuedLayer layerOf(const CounterTrack& track, const Compositor::Values& changes) {
    QueuedLayer layer{nameOf(track), {}, {}, {}};
    int32_t last = 0;
    for (const CounterValue& change : changes) {
        const int32_t depth = depthOf(change.value);
        if (change.value < 0) layer.belowZero.add(change.at.line);
        // The first value may be any, as the recording starts at any moment.
        const bool isFirst = &change == changes.data();
        if (!isFirst && (depth > last ? depth - last : last - depth) > 1) {
            layer.jumps.add(change.at.line);
        }
        if (depth != last) layer.depths.push_back({change.at, depth, depth > last});
        last = depth;
    }
    return layer;
}

}  // namespace

std::vector<QueuedLayer> findLayers(const Compositor& compositor) {
    const auto& tracks = compositor.tracks();
    bool hasBufferTx = false;
    for (size_t i = 0; i < tracks.size(); ++i) {
        hasBufferTx |= tracks[i].role == CounterRole::BufferTx && !compositor.changesOf(i).empty();
    }
    const auto isLayer = [&](const CounterTrack& track, const Compositor::Values& changes) {
        if (hasBufferTx) return track.role == CounterRole::BufferTx;
        return track.role == CounterRole::Candidate &&
               (track.hasSlots || crossesThreads(changes, compositor.tid()));
    };
    std::vector<QueuedLayer> layers;
    for (size_t i = 0; i < tracks.size(); ++i) {
        const Compositor::Values& changes = compositor.changesOf(i);
        if (!isLayer(tracks[i], changes)) continue;
        QueuedLayer layer = layerOf(tracks[i], changes);
        if (!layer.depths.empty()) layers.push_back(std::move(layer));
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
