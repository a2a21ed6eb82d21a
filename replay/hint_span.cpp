#include "replay/hint_span.h"

#include <algorithm>

namespace brevold::replay {

namespace {

constexpr int64_t kNsPerMs = 1000000;

enum Channel { Qb, Sf, Display, kChannelCount };

Channel channelOf(HintKind kind) {
    switch (kind) {
        case HintKind::Down:
        case HintKind::Up:
            return Qb;
        case HintKind::JankBoost:
        case HintKind::Release:
            return Sf;
        case HintKind::RefreshRate:
            return Display;
    }
    return Display;
}

}  // namespace

std::vector<HintSpan> hintSpans(const std::vector<Hint>& hints, int64_t traceEndNs) {
    std::vector<HintSpan> spans;
    int64_t nextNs[kChannelCount] = {traceEndNs, traceEndNs, traceEndNs};
    for (auto hint = hints.rbegin(); hint != hints.rend(); ++hint) {
        int64_t& endNs = nextNs[channelOf(hint->kind)];
        const bool isTimed = hint->kind != HintKind::RefreshRate;
        if (hint->kind != HintKind::Release) {
            const int64_t expiryNs = hint->timeNs + hint->durationMs * kNsPerMs;
            spans.push_back({*hint, isTimed ? std::min(endNs, expiryNs) : endNs});
        }
        endNs = hint->timeNs;
    }
    std::reverse(spans.begin(), spans.end());
    return spans;
}

}  // namespace brevold::replay
