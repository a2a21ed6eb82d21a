// The client library as a test wants it: it asks the test program, and each function can be left
// out, so that every variant keeps the one file name.

#include "brevold/perf_client.h"

extern "C" {
int testPerfHint(int hint, const char* package, int duration, int type);
android::PerfSetting testPerfGetProp(const char* key, const char* fallback);
int testPerfLockRel(int handle);
int testPerfGetFeedback(int query, const char* package);

#ifndef WITHOUT_perf_hint
int perf_hint(int hint, const char* package, int duration, int type) {
    return testPerfHint(hint, package, duration, type);
}
#endif

#ifndef WITHOUT_perf_get_prop
android::PerfSetting perf_get_prop(const char* key, const char* fallback) {
    return testPerfGetProp(key, fallback);
}
#endif

#ifndef WITHOUT_perf_lock_rel
int perf_lock_rel(int handle) {
    return testPerfLockRel(handle);
}
#endif

#ifndef WITHOUT_perf_get_feedback
int perf_get_feedback(int query, const char* package) {
    return testPerfGetFeedback(query, package);
}
#endif
}
