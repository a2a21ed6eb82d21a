#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/**
 * The library's workers, which a program can step. Two implementations: thread_workers runs each
 * android::Thread as a thread of its own, fiber_workers as a context within the main thread. A
 * program links one of them; it supplies android::Thread::run, pthread_cond_wait and
 * pthread_cond_signal to the libraries that the program opens.
 *
 * All functions are for the main thread.
 */
namespace brevold::host {

struct StartedThread {
    std::string name;
    int32_t priority;
    size_t stackBytes;
};

/** Every android::Thread that was run, in that order. */
std::vector<StartedThread> startedThreads();

/** Returns when every worker has ended, or waits with no wake-up pending. */
void settle();

/**
 * Holds the workers in their waits, whatever wakes them, so that requests posted meanwhile stay
 * unsent. Do not call settle() before letWorkersGo().
 */
void holdWorkers();
void letWorkersGo();

/** Number of signals to conditions of workers so far, whether or not the worker was waiting. */
int signalCount();

/** Wakes a waiting worker without a request. */
void wakeSpuriously(size_t worker);

/** Makes a waiting worker's wait return an error number. The worker is then expected to end. */
void failWait(size_t worker, int error);

/** Index into startedThreads() of the calling worker; kMainThread outside of all workers. */
int32_t currentWorker();
constexpr int32_t kMainThread = -1;

}  // namespace brevold::host
