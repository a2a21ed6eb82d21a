#include "host/virtual_platform.h"

#include <log/log.h>
#include <utils/Timers.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>

#include "host/workers.h"

namespace brevold::host {

namespace {

std::atomic<int64_t> gTimeNs;  // relaxed, because a clock does not order threads
std::atomic<uint64_t> gTraceTags{UINT64_MAX};
std::mutex gOutputLock;
std::vector<LogLine> gLog;
std::vector<TraceMark> gTraceMarks;

void addTraceMark(bool isBegin, const char* label) {
    const std::lock_guard lock(gOutputLock);
    gTraceMarks.push_back({gTimeNs, currentWorker(), isBegin, label});
}

}  // namespace

void setTimeNs(int64_t timeNs) {
    gTimeNs.store(timeNs, std::memory_order_relaxed);
}

void setEnabledTraceTags(uint64_t tags) {
    gTraceTags = tags;
}

std::vector<LogLine> takeLog() {
    const std::lock_guard lock(gOutputLock);
    return std::exchange(gLog, {});
}

std::vector<TraceMark> takeTraceMarks() {
    const std::lock_guard lock(gOutputLock);
    return std::exchange(gTraceMarks, {});
}

}  // namespace brevold::host

using namespace brevold::host;

nsecs_t systemTime(int /*clock*/) {
    return gTimeNs.load(std::memory_order_relaxed);
}

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...) {
    char text[1024];
    va_list args;
    va_start(args, format);
    const int length = vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    const std::lock_guard lock(gOutputLock);
    gLog.push_back({gTimeNs, priority, tag, text});
    return length;
}

extern "C" uint64_t atrace_get_enabled_tags() {
    return gTraceTags;
}

extern "C" void atrace_begin_body(const char* label) {
    addTraceMark(true, label);
}

extern "C" void atrace_end_body() {
    addTraceMark(false, "");
}
