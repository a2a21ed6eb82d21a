#pragma once

#include <cutils/trace.h>
#include <log/log.h>
#include <pthread.h>
#include <utils/Mutex.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <type_traits>

namespace android {

#define BREVOLD_LOGE(...) __android_log_print(ANDROID_LOG_ERROR, "Brevold", __VA_ARGS__)

/** A trace section whose begin and end each test the tag for themselves. */
class TraceSection {
  public:
    /** Formats the label only when enabled; more than 255 characters are cut. */
    __attribute__((format(printf, 3, 4))) TraceSection(bool enabled, const char* format, ...)
          : mEnabled(enabled) {
        if (!enabled) return;
        char label[256];
        va_list args;
        va_start(args, format);
        vsnprintf(label, sizeof(label), format, args);
        va_end(args);
        atrace_begin(ATRACE_TAG_ALWAYS, label);
    }
    ~TraceSection() {
        if (mEnabled) atrace_end(ATRACE_TAG_ALWAYS);
    }
    TraceSection(const TraceSection&) = delete;
    TraceSection& operator=(const TraceSection&) = delete;

  private:
    const bool mEnabled;
};

/** a - b and a + b of signed integers; an overflow aborts the process, in every build type. */
template <typename T>
inline T checkedSub(T a, T b) {
    static_assert(std::is_signed_v<T>);
    T result;
    if (__builtin_sub_overflow(a, b, &result)) abort();
    return result;
}

template <typename T>
inline T checkedAdd(T a, T b) {
    static_assert(std::is_signed_v<T>);
    T result;
    if (__builtin_add_overflow(a, b, &result)) abort();
    return result;
}

/** Locks; where the lock cannot be had, aborts the process. */
inline void lockOrAbort(Mutex& mutex) ACQUIRE(mutex) {
    if (mutex.lock() != OK) abort();
}

/** Unlocks and tells the status, 0 on success, which Mutex::unlock() keeps to itself. */
inline int unlockWithStatus(Mutex& mutex) RELEASE(mutex) NO_THREAD_SAFETY_ANALYSIS {
    static_assert(std::is_standard_layout_v<Mutex> && sizeof(Mutex) == sizeof(pthread_mutex_t));
    return pthread_mutex_unlock(reinterpret_cast<pthread_mutex_t*>(&mutex));
}

}  // namespace android
