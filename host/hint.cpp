#include "host/hint.h"

#include <fmt/format.h>

#include "brevold/protocol.h"

namespace brevold::host {

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
            return fmt::format("release of {}", hint.type);
        case HintKind::RefreshRate:
            return fmt::format("refresh-rate {}", hint.type);
        default:
            return fmt::format("{} {:.3f}", nameOf(hint.kind), hint.scale);
    }
}

Hint decodeHint(const ServiceCall& call) {
    const auto type = static_cast<uint32_t>(call.type);
    Hint hint = {
            call.timeNs, HintKind::RefreshRate, call.identifier, call.duration, type, 0.0, 0, 0};
    if (call.identifier == android::kRefreshRateHint) return hint;
    if (call.duration == android::kReleaseDuration) {
        hint.kind = HintKind::Release;
        return hint;
    }
    const android::TypeWord word = android::unpackTypeWord(type);
    hint.scale = word.scale;
    hint.direction = word.direction;
    hint.boostLevel = word.boostLevel;
    if (!word.isQb) {
        hint.kind = HintKind::JankBoost;
    } else {
        hint.kind = hint.direction == android::kDirectionDown ? HintKind::Down : HintKind::Up;
    }
    return hint;
}

}  // namespace brevold::host
