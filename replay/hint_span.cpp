#include "replay/hint_span.h"

#include <algorithm>

#include "base/time_units.h"

namespace brevold::replay {

Channel channelOf(host::HintKind kind) {
    switch (kind) {
        case host::HintKind::Down:
        case host::HintKind::Up:
            return Channel::Qb;
        case host::HintKind::JankBoost:
        case host::HintKind::Release:
            return Channel::Sf;
        case host::HintKind::RefreshRate:
            return Channel::Display;
    }
    return Channel::Display;
}

std::vector<HintSpan> hintSpans(const std::vector<host::Hint>& hints, int64_t traceEndNs) {
    std::vector<HintSpan> spans;
    int64_t nextNs[std::size(kChannels)] = {traceEndNs, traceEndNs, traceEndNs};
    for (auto hint = hints.rbegin(); hint != hints.rend(); ++hint) {
        int64_t& endNs = nextNs[static_cast<size_t>(channelOf(hint->kind))];
        const bool isTimed = hint->kind != host::HintKind::RefreshRate;
        if (hint->kind != host::HintKind::Release) {
            const int64_t expiryNs = hint->timeNs + hint->durationMs * kNsPerMs;
            spans.push_back({*hint, isTimed ? std::min(endNs, expiryNs) : endNs});
        }
        endNs = hint->timeNs;
    }
    std::reverse(spans.begin(), spans.end());
    return spans;
}

}  // namespace brevold::replay
