// The run-time bound libraries as a test wants them: they ask the test program. A variant that
// lacks a function is built with another name for it.

#include "brevold/perf_client.h"

#define STANDIN(Result, name, parameters, arguments) \
    Result test_##name parameters;                   \
    Result name parameters {                         \
        return test_##name arguments;                \
    }

extern "C" {
STANDIN(int, perf_hint, (int hint, const char* package, int duration, int type),
        (hint, package, duration, type))
STANDIN(android::PerfSetting, perf_get_prop, (const char* key, const char* fallback),
        (key, fallback))
STANDIN(int, perf_lock_rel, (int handle), (handle))
STANDIN(int, perf_get_feedback, (int query, const char* package), (query, package))
STANDIN(int, IsFeatureEnabled, (int feature), (feature))
}
