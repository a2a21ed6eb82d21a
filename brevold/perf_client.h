#pragma once

#include <cstddef>

namespace android {

/** Size of a setting's text with its terminator; the platform's limit for property values. */
constexpr size_t kSettingSize = 92;

/** A setting's text, which the service returns by value. */
struct PerfSetting {
    char text[kSettingSize];
};

// The four functions of the performance service's client library.
using PerfGetFeedbackFn = int (*)(int query, const char* package);
using PerfGetPropFn = PerfSetting (*)(const char* key, const char* fallback);
using PerfHintFn = int (*)(int hint, const char* package, int duration, int type);
using PerfLockRelFn = int (*)(int handle);

}  // namespace android
