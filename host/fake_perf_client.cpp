#include "host/fake_perf_client.h"

#include <utils/Timers.h>

#include <cstring>
#include <mutex>

#include "brevold/perf_client.h"
#include "host/device_profile.h"

namespace {

using namespace brevold::host;

std::mutex gServiceLock;
ServiceListener gListener;
void* gListenerContext;
int32_t gNextHandle = 1;

void report(ServiceCall::Kind kind, int identifier, const char* package, int duration, int type,
            int result) {
    if (gListener == nullptr) return;
    gListener({systemTime(SYSTEM_TIME_MONOTONIC), kind, identifier,
               package == nullptr ? "" : package, duration, type, result},
              gListenerContext);
}

}  // namespace

namespace brevold::host {

void perfd_set_listener(ServiceListener listener, void* context) {
    const std::lock_guard lock(gServiceLock);
    gListener = listener;
    gListenerContext = context;
}

}  // namespace brevold::host

extern "C" {

android::PerfSetting perf_get_prop(const char* key, const char* fallback) {
    android::PerfSetting answer = {};
    const std::string value = profileProperty(key, fallback);
    memcpy(answer.text, value.data(), std::min(value.size(), sizeof(answer.text) - 1));
    return answer;
}

int perf_hint(int identifier, const char* package, int duration, int type) {
    const std::lock_guard lock(gServiceLock);
    const int32_t handle = gNextHandle;
    gNextHandle = gNextHandle == INT32_MAX ? 1 : gNextHandle + 1;
    report(ServiceCall::Kind::Hint, identifier, package, duration, type, handle);
    return handle;
}

int perf_lock_rel(int handle) {
    const std::lock_guard lock(gServiceLock);
    report(ServiceCall::Kind::Release, handle, nullptr, 0, 0, 0);
    return 0;
}

int perf_get_feedback(int identifier, const char* package) {
    const std::lock_guard lock(gServiceLock);
    const int answer = applicationType(package == nullptr ? "" : package);
    report(ServiceCall::Kind::Query, identifier, package, 0, 0, answer);
    return answer;
}

}  // extern "C"
