#include <dlfcn.h>
#include <pthread.h>
#include <utils/Thread.h>

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <string>

#include "host/workers.h"

namespace brevold::host {

namespace {

using CondWaitFn = int (*)(pthread_cond_t*, pthread_mutex_t*);
using CondSignalFn = int (*)(pthread_cond_t*);
using ThreadRunFn = android::status_t (*)(android::Thread*, const char*, int32_t, size_t);

CondWaitFn gRealWait;
CondSignalFn gRealSignal;
ThreadRunFn gRealRun;

/**
 * Finds a sanitizer's interceptor if there is one, else the platform's function. A wait that
 * bypasses the interceptor would hide from the sanitizer how it orders the threads.
 */
template <typename Fn>
void findReal(Fn& function, const char* symbol) {
    const std::string interceptor = std::string("__interceptor_") + symbol;
    function = reinterpret_cast<Fn>(dlsym(RTLD_DEFAULT, interceptor.c_str()));
    if (function == nullptr) function = reinterpret_cast<Fn>(dlsym(RTLD_NEXT, symbol));
    if (function == nullptr) {
        fprintf(stderr, "the platform has no %s\n", symbol);
        abort();
    }
}

/**
 * Runs before main, and so before any second thread starts. A function-local static does not work:
 * the guard of its initialisation itself waits on a condition variable.
 */
__attribute__((constructor)) void findRealFunctions() {
    findReal(gRealWait, "pthread_cond_wait");
    findReal(gRealSignal, "pthread_cond_signal");
    findReal(gRealRun, "_ZN7android6Thread3runEPKcim");
}

struct Worker {
    StartedThread started;
    const android::Thread* object;
    pthread_cond_t* condition = nullptr;
    pthread_mutex_t* mutex = nullptr;
    bool isWaiting = false;
    bool hasWakeUp = false;
    bool hasEnded = false;
    int waitError = 0;
};

std::mutex gGate;
pthread_cond_t gGateChanged = PTHREAD_COND_INITIALIZER;
std::deque<Worker> gWorkers;  // a deque, because references stay valid while it grows
int gSignalCount;
bool gIsHeld;

/** Destroyed when the thread exits, after the worker's last log line. */
struct WorkerIndex {
    int32_t value = -1;
    ~WorkerIndex() {
        if (value < 0) return;
        const std::lock_guard lock(gGate);
        gWorkers[static_cast<size_t>(value)].hasEnded = true;
        gRealSignal(&gGateChanged);
    }
};
thread_local WorkerIndex tWorker;

/** Returns the worker whose object contains the condition: the nearest one below its address. */
Worker* workerOf(const pthread_cond_t* condition) {
    constexpr size_t kMaxObjectBytes = 1024;
    const auto address = reinterpret_cast<uintptr_t>(condition);
    Worker* found = nullptr;
    for (Worker& worker : gWorkers) {
        const auto object = reinterpret_cast<uintptr_t>(worker.object);
        if (address - object >= kMaxObjectBytes) continue;
        if (found == nullptr || worker.object > found->object) found = &worker;
    }
    return found;
}

void wake(size_t thread, int error) {
    settle();
    Worker& worker = gWorkers.at(thread);
    // While we hold its mutex, the worker is inside its wait and cannot miss the signal.
    pthread_mutex_lock(worker.mutex);
    {
        const std::lock_guard lock(gGate);
        worker.waitError = error;
        worker.hasWakeUp = true;
    }
    gRealSignal(worker.condition);
    pthread_mutex_unlock(worker.mutex);
}

}  // namespace

int32_t currentWorker() {
    return tWorker.value;
}

std::vector<StartedThread> startedThreads() {
    const std::lock_guard lock(gGate);
    std::vector<StartedThread> started;
    for (const Worker& worker : gWorkers)
        started.push_back(worker.started);
    return started;
}

void settle() {
    const auto isSettled = [](const Worker& worker) {
        return worker.hasEnded || (worker.isWaiting && !worker.hasWakeUp);
    };
    std::vector<pthread_mutex_t*> mutexes;
    {
        const std::lock_guard lock(gGate);
        for (const Worker& worker : gWorkers) {
            while (!isSettled(worker))
                gRealWait(&gGateChanged, gGate.native_handle());
            if (!worker.hasEnded) mutexes.push_back(worker.mutex);
        }
    }
    // A worker announces its wait while it still holds its mutex, which the wait releases.
    for (pthread_mutex_t* mutex : mutexes) {
        pthread_mutex_lock(mutex);
        pthread_mutex_unlock(mutex);
    }
}

void holdWorkers() {
    const std::lock_guard lock(gGate);
    gIsHeld = true;
}

void releaseWorkers() {
    // Copies, because a late signal may already have woken a worker, which then writes its entry.
    std::vector<Worker> woken;
    {
        const std::lock_guard lock(gGate);
        gIsHeld = false;
        for (const Worker& worker : gWorkers) {
            if (worker.hasWakeUp) woken.push_back(worker);
        }
    }
    for (const Worker& worker : woken) {
        pthread_mutex_lock(worker.mutex);
        gRealSignal(worker.condition);
        pthread_mutex_unlock(worker.mutex);
    }
}

int signalCount() {
    const std::lock_guard lock(gGate);
    return gSignalCount;
}

void wakeSpuriously(size_t thread) {
    wake(thread, 0);
}

void failWait(size_t thread, int error) {
    wake(thread, error);
}

namespace {

int waitAsWorker(Worker& worker, pthread_cond_t* condition, pthread_mutex_t* mutex) {
    {
        const std::lock_guard lock(gGate);
        worker.condition = condition;
        worker.mutex = mutex;
        worker.isWaiting = true;
        gRealSignal(&gGateChanged);
    }
    while (true) {
        gRealWait(condition, mutex);
        const std::lock_guard lock(gGate);
        // Spurious wake-ups of the host would make two replays differ.
        if (!worker.hasWakeUp || gIsHeld) continue;
        worker.hasWakeUp = false;
        worker.isWaiting = false;
        return worker.waitError;
    }
}

}  // namespace

}  // namespace brevold::host

using namespace brevold::host;

extern "C" int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    Worker* worker = nullptr;
    {
        const std::lock_guard lock(gGate);
        worker = workerOf(condition);
        if (worker != nullptr) {
            for (size_t i = 0; i < gWorkers.size(); ++i) {
                if (&gWorkers[i] == worker) tWorker.value = static_cast<int32_t>(i);
            }
        }
    }
    if (worker == nullptr) return gRealWait(condition, mutex);
    return waitAsWorker(*worker, condition, mutex);
}

extern "C" int pthread_cond_signal(pthread_cond_t* condition) {
    {
        const std::lock_guard lock(gGate);
        Worker* const worker = workerOf(condition);
        if (worker != nullptr) {
            ++gSignalCount;
            // As on a device, a signal is lost if no thread waits.
            if (worker->isWaiting) worker->hasWakeUp = true;
        }
    }
    return gRealSignal(condition);
}

android::status_t android::Thread::run(const char* name, int32_t priority, size_t stack) {
    {
        const std::lock_guard lock(gGate);
        gWorkers.push_back({{name, priority, stack}, this});
    }
    return gRealRun(this, name, priority, stack);
}
