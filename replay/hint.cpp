#include "replay/hint.h"

#include "brevold/perf_client.h"
#include "replay/text.h"

namespace brevold::replay {

namespace {

constexpr uint32_t kQbChannelBit = 1u << 22;
constexpr uint32_t kDirectionDown = 1;

}  // namespace

const char* nameOf(HintKind kind) {
    switch (kind) {
        case HintKind::Down:
            return "DOWN";
        case HintKind::Up:
            return "UP";
        case HintKind::JankBoost:
            return "jank boost";
        case HintKind::Release:
            return "release";
        case HintKind::RefreshRate:
            return "refresh-rate";
    }
    return "";
}

bool hasScale(HintKind kind) {
    return kind != HintKind::Release && kind != HintKind::RefreshRate;
}

std::string describe(const Hint& hint) {
    switch (hint.kind) {
        case HintKind::Release:
            return format("release of %u", hint.type);
        case HintKind::RefreshRate:
            return format("refresh-rate %u", hint.type);
        default:
            return format("%s %.3f", nameOf(hint.kind), hint.scale);
    }
}

Hint decodeHint(const host::ServiceCall& call) {
    const auto type = static_cast<uint32_t>(call.type);
    Hint hint = {
            call.timeNs, HintKind::RefreshRate, call.identifier, call.duration, type, 0.0, 0, 0};
    if (call.identifier == android::kRefreshRateHint) return hint;
    if (call.duration == 0) {
        hint.kind = HintKind::Release;
        return hint;
    }
    hint.scale = (type & 0xffff) / 1000.0;
    hint.direction = type >> 16 & 0x7;
    hint.boostLevel = type >> 19 & 0x7;
    if ((type & kQbChannelBit) == 0) {
        hint.kind = HintKind::JankBoost;
    } else {
        hint.kind = hint.direction == kDirectionDown ? HintKind::Down : HintKind::Up;
    }
    return hint;
}

}  // namespace brevold::replay
