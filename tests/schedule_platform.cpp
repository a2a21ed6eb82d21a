// The platform and the performance service of schedule_test.cpp. Outside the fibers the program has
// one thread, and locking has no effect.

#include <dlfcn.h>
#include <log/log.h>
#include <malloc.h>
#include <pthread.h>
#include <utils/Thread.h>
#include <utils/Timers.h>

#include <cstdio>
#include <cstdlib>

#include "brevold/frame_rate.h"
#include "brevold/perf_client.h"
#include "tests/schedule_state.h"

namespace brevold::test {

namespace {

using namespace boost::context::detail;

fcontext_t gMain;
int gBlocks;  // heap blocks that the current fiber allocated and has not freed
size_t gStartedWorkers;
const pthread_cond_t* gConditions[kWorkers];

struct Body {
    void (*run)(void*);
    void* argument;
};

void check(const char* violation) {
    if (gWorld.violation == nullptr) gWorld.violation = violation;
}

size_t indexOf(const pthread_mutex_t* mutex) {
    // The first lock that a worker takes is its own.
    if (gCurrent < kWorkers && gLocks[gCurrent] == nullptr) gLocks[gCurrent] = mutex;
    for (size_t lock = 0; lock < kLocks; ++lock) {
        if (gLocks[lock] == mutex) return lock;
    }
    fprintf(stderr, "the library uses a lock that is neither gLock nor a worker's\n");
    abort();
}

}  // namespace

void start(size_t fiber, void (*run)(void*), void* argument) {
    const auto entry = [](transfer_t main) {
        const Body body = *static_cast<const Body*>(main.data);
        gMain = main.fctx;
        body.run(body.argument);
        pause(Operation::End);
    };
    gWorld.fibers[fiber].context = make_fcontext(gStacks[fiber] + kStackBytes, kStackBytes, entry);
    Body body = {run, argument};
    resume(fiber, &body);
}

void resume(size_t fiber, void* data) {
    fcontext_t& context = gWorld.fibers[fiber].context;
    // Old bytes below the stack pointer would make equal states differ later.
    constexpr size_t kClearedBytes = 4096;
    memset(static_cast<char*>(context) - kClearedBytes, 0, kClearedBytes);
    gCurrent = fiber;
    context = jump_fcontext(context, data).fctx;
    gCurrent = kNoFiber;
}

void pause(Operation next, size_t lock) {
    if (gBlocks != 0) check("a heap block is kept across a pause");
    gWorld.fibers[gCurrent].next = next;
    gWorld.fibers[gCurrent].lock = lock;
    gMain = jump_fcontext(gMain, nullptr).fctx;
}

}  // namespace brevold::test

using namespace brevold::test;

void* operator new(size_t bytes) {
    if (gCurrent != kNoFiber) ++gBlocks;
    void* const block = malloc(bytes);
    if (block == nullptr) abort();
    return block;
}

void operator delete(void* block) noexcept {
    if (gCurrent != kNoFiber && block != nullptr) --gBlocks;
    free(block);
}

void operator delete(void* block, size_t) noexcept {
    operator delete(block);
}

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) {
    gLastLock = mutex;
    if (gCurrent == kNoFiber) return 0;
    const size_t lock = indexOf(mutex);
    pause(Operation::Lock, lock);
    if (lock == kGLock && (gWorld.owners[kSf] == gCurrent || gWorld.owners[kQb] == gCurrent)) {
        check("gLock is locked after a worker's lock");
    }
    gWorld.owners[lock] = gCurrent;
    return 0;
}

extern "C" int pthread_mutex_unlock(pthread_mutex_t* mutex) {
    if (gCurrent == kNoFiber) return 0;
    const size_t lock = indexOf(mutex);
    if (gWorld.owners[lock] != gCurrent) check("a lock that is not held is released");
    if (gCurrent < kWorkers) {
        check(gWorld.rules.endPass(gCurrent));
    } else if (lock < kWorkers) {
        check(gWorld.rules.changeRequest(*gWorld.fibers[gCurrent].call, gWorld.isAsleep(lock)));
    }
    gWorld.owners[lock] = kNoFiber;
    // Code after the unlock may access data without the lock. A pause before the unlock would add
    // no order, because no other fiber can take the lock until then.
    pause(Operation::Unlock);
    return 0;
}

extern "C" int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    const size_t lock = indexOf(mutex);
    gConditions[gCurrent] = condition;
    gWorld.owners[lock] = kNoFiber;
    gWorld.fibers[gCurrent].isSignalled = false;
    pause(Operation::WakeUp, lock);
    gWorld.owners[lock] = gCurrent;
    gWorld.rules.wakeUp(gCurrent);
    return 0;
}

extern "C" int pthread_cond_signal(pthread_cond_t* condition) {
    for (size_t worker = 0; worker < kWorkers; ++worker) {
        if (gConditions[worker] == condition && gWorld.isAsleep(worker)) {
            gWorld.fibers[worker].isSignalled = true;
        }
    }
    return 0;
}

android::status_t android::Thread::run(const char*, int32_t, size_t) {
    void* const object = dynamic_cast<void*>(this);
    gLibraryMemory.push_back({static_cast<char*>(object), malloc_usable_size(object)});
    const auto loop = [](void* self) { static_cast<android::Thread*>(self)->threadLoop(); };
    start(gStartedWorkers++, loop, this);
    return OK;
}

// This program contains the libraries that the library opens.
extern "C" void* dlopen(const char*, int flags) {
    using Fn = void* (*)(const char*, int);
    return reinterpret_cast<Fn>(dlsym(RTLD_NEXT, "dlopen"))(nullptr, flags);
}

nsecs_t systemTime(int /*clock*/) {
    return gWorld.timeNs;
}

extern "C" uint64_t atrace_get_enabled_tags() {
    return 0;
}

extern "C" int __android_log_print(int, const char*, const char* format, ...) {
    char text[256];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    if (sscanf(text, "[FM]gMode:%d", &gLoggedMode) == 1) {
        ++gWindows;
        if (gLoggedMode < 0 || gLoggedMode > 5) check("the frame-rate mode is out of range");
    } else if (gCurrent == kQb) {
        gWorld.rules.dropRequest();
    }
    return 0;
}

extern "C" int perf_hint(int, const char*, int duration, int type) {
    if (gCurrent >= kWorkers) return 1;
    const bool isRelease = duration == android::kReleaseDuration;
    ++(gCurrent == kQb ? gRequests : isRelease ? gReleases : gBoosts);
    check(gWorld.rules.sendHint(gCurrent, duration, static_cast<uint32_t>(type)));
    return 1;
}

extern "C" int perf_get_feedback(int, const char*) {
    if (gCurrent != kNoFiber) pause(Operation::Query);
    return android::kTargetAppType;
}

extern "C" android::PerfSetting perf_get_prop(const char*, const char*) {
    return {"1"};
}

extern "C" int IsFeatureEnabled(int) {
    return 1;
}
