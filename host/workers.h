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
 * Call all functions except currentWorker() from the main thread.
 */
namespace brevold::host {

struct StartedThread {
    std::string name;
    int32_t priority;
    size_t stackBytes;
};

/** Returns every android::Thread that was run, in order. */
std::vector<StartedThread> startedThreads();

/** Returns when every worker has ended or waits with no wake-up pending. */
void settle();

/**
 * Keeps the workers in their waits even if they are signalled, so requests stay unsent until
 * releaseWorkers(). Do not call settle() in between.
 */
void holdWorkers();
void releaseWorkers();

/** Returns how often the workers' conditions were signalled, even if no worker was waiting. */
int signalCount();

/** Wakes a waiting worker without a request. */
void wakeSpuriously(size_t worker);

/** Makes the wait of a waiting worker return an error number. The worker must then end. */
void failWait(size_t worker, int error);

/** Returns the index into startedThreads() of the calling worker, or kMainThread. */
int32_t currentWorker();
constexpr int32_t kMainThread = -1;

}  // namespace brevold::host
