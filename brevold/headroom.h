#pragma once

#include <cstdint>

/** The arithmetic of DOWN and UP requests. Times in nanoseconds. */
namespace android {

/** The frame budget is the refresh period less this margin. */
constexpr int64_t kPeriodMarginNs = 1000000;

/** DOWN needs this many queued frames, UP exactly one. */
constexpr int32_t kMinDepthForDown = 2;

/** Returns the time that one queued frame leaves to the application. */
constexpr int64_t frameBudgetOf(int64_t periodNs) {
    return periodNs - kPeriodMarginNs;
}

constexpr float ratio(int64_t dividend, int64_t divisor) {
    return static_cast<float>(dividend) / static_cast<float>(divisor);
}

/** `interval` is the time between the last two frames. */
constexpr float downScale(int64_t interval, int64_t headroom) {
    const float quotient = ratio(interval, headroom);
    return quotient > 1.0f ? 1.0f : quotient;  // NaN stays NaN
}

/** Returns true if an application that takes this part of its headroom is too slow. */
constexpr bool isUpDue(float scale) {
    return scale > 1.0f;
}

}  // namespace android
