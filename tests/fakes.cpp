// The libraries that are opened at run time. Each function forwards to the test program. A variant
// without a function is built with another name for it.

#include "brevold/perf_client.h"

#define FORWARD(Result, name, parameters, arguments) \
    Result test_##name parameters;                   \
    Result name parameters {                         \
        return test_##name arguments;                \
    }

extern "C" {
FORWARD(int, perf_hint, (int hint, const char* package, int duration, int type),
        (hint, package, duration, type))
FORWARD(android::PerfSetting, perf_get_prop, (const char* key, const char* fallback),
        (key, fallback))
FORWARD(int, perf_lock_rel, (int handle), (handle))
FORWARD(int, perf_get_feedback, (int query, const char* package), (query, package))
FORWARD(int, IsFeatureEnabled, (int feature), (feature))
}
