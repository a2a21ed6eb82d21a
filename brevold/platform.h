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

/** Begins a trace section, if tracing is on. Labels are cut after 255 characters. */
__attribute__((format(printf, 1, 0))) inline void beginTraceSection(const char* format,
                                                                    va_list args) {
    char label[256];
    vsnprintf(label, sizeof(label), format, args);
    atrace_begin(ATRACE_TAG_ALWAYS, label);
}

/** A trace section that lasts for a scope. Its begin and its end each test the trace tag. */
class TraceSection {
  public:
    __attribute__((format(printf, 3, 4))) TraceSection(bool enabled, const char* format, ...)
          : mEnabled(enabled) {
        if (!enabled) return;
        va_list args;
        va_start(args, format);
        beginTraceSection(format, args);
        va_end(args);
    }
    ~TraceSection() {
        if (mEnabled) atrace_end(ATRACE_TAG_ALWAYS);
    }
    TraceSection(const TraceSection&) = delete;
    TraceSection& operator=(const TraceSection&) = delete;

  private:
    const bool mEnabled;
};

/** Marks a moment in the trace with an empty section. */
__attribute__((format(printf, 1, 2))) inline void traceMarker(const char* format, ...) {
    va_list args;
    va_start(args, format);
    beginTraceSection(format, args);
    va_end(args);
    atrace_end(ATRACE_TAG_ALWAYS);
}

/** a - b and a + b of signed integers. An overflow aborts the process, in every build type. */
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

/**
 * Holds a mutex for a scope and aborts the process if it cannot be locked. Code that continues
 * without the lock uses Mutex::Autolock, which ignores the failure.
 */
class SCOPED_CAPABILITY ScopedLock {
  public:
    explicit ScopedLock(Mutex& mutex) ACQUIRE(mutex) : mMutex(mutex) {
        if (mutex.lock() != OK) abort();
    }
    ~ScopedLock() RELEASE() NO_THREAD_SAFETY_ANALYSIS {
        if (mIsHeld) unlock();
    }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

    /** Unlocks early. Returns the status, 0 on success, which Mutex::unlock() does not. */
    int unlock() RELEASE() NO_THREAD_SAFETY_ANALYSIS {
        static_assert(std::is_standard_layout_v<Mutex> && sizeof(Mutex) == sizeof(pthread_mutex_t));
        mIsHeld = false;
        return pthread_mutex_unlock(reinterpret_cast<pthread_mutex_t*>(&mMutex));
    }

  private:
    Mutex& mMutex;
    bool mIsHeld = true;
};

}  // namespace android
