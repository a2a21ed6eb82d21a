#include <dlfcn.h>
#include <pthread.h>
#include <utils/Thread.h>

#include <boost/context/fiber.hpp>
#include <boost/context/fixedsize_stack.hpp>
#include <deque>
#include <utility>

#include "host/fiber_switch.h"
#include "host/workers.h"

namespace brevold::host {

namespace {

namespace context = boost::context;

constexpr size_t kStackBytes = 256 * 1024;

/**
 *   Ready    settle()               -> Running
 *   Running  pthread_cond_wait()    -> Waiting
 *   Running  threadLoop() returns   -> Ended
 *   Waiting  signal or wake()       -> Ready
 */
enum class State : uint8_t { Ready, Running, Waiting, Ended };

struct Worker {
    StartedThread started;
    State state = State::Ready;
    const pthread_cond_t* condition = nullptr;
    int waitError = 0;
    context::stack_context stack;
    context::fiber self;
    context::fiber main;
    FiberSwitch note;
};

/** Never destroyed: workers live as long as the process, and destroying a fiber unwinds it. */
std::deque<Worker>& workers() {
    static auto* const list = new std::deque<Worker>;
    return *list;
}

Worker* gRunning;
bool gIsHeld;
int gSignalCount;

void resume(Worker& worker) {
    worker.state = State::Running;
    gRunning = &worker;
    worker.note.beforeEntering(worker.stack.sp, worker.stack.size);
    worker.self = std::move(worker.self).resume();
    worker.note.afterLeaving();
    gRunning = nullptr;
}

void wake(size_t index, int error) {
    settle();
    Worker& worker = workers().at(index);
    worker.waitError = error;
    worker.state = State::Ready;
}

int waitAsWorker(Worker& worker, pthread_cond_t* condition, pthread_mutex_t* mutex) {
    worker.condition = condition;
    worker.state = State::Waiting;
    pthread_mutex_unlock(mutex);
    worker.note.beforeLeaving(false);
    worker.main = std::move(worker.main).resume();
    worker.note.afterEntering();
    pthread_mutex_lock(mutex);
    return worker.waitError;
}

}  // namespace

std::vector<StartedThread> startedThreads() {
    std::vector<StartedThread> started;
    for (const Worker& worker : workers())
        started.push_back(worker.started);
    return started;
}

void settle() {
    if (gIsHeld) return;
    for (Worker& worker : workers()) {
        if (worker.state == State::Ready) resume(worker);
    }
}

void holdWorkers() {
    gIsHeld = true;
}

void releaseWorkers() {
    gIsHeld = false;
}

int signalCount() {
    return gSignalCount;
}

void wakeSpuriously(size_t worker) {
    wake(worker, 0);
}

void failWait(size_t worker, int error) {
    wake(worker, error);
}

int32_t currentWorker() {
    if (gRunning == nullptr) return kMainThread;
    int32_t index = 0;
    while (&workers()[static_cast<size_t>(index)] != gRunning)
        ++index;
    return index;
}

}  // namespace brevold::host

using namespace brevold::host;

extern "C" int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    using Fn = int (*)(pthread_cond_t*, pthread_mutex_t*);
    static const auto real = reinterpret_cast<Fn>(dlsym(RTLD_NEXT, "pthread_cond_wait"));
    if (gRunning == nullptr) return real(condition, mutex);
    return waitAsWorker(*gRunning, condition, mutex);
}

extern "C" int pthread_cond_signal(pthread_cond_t* condition) {
    using Fn = int (*)(pthread_cond_t*);
    static const auto real = reinterpret_cast<Fn>(dlsym(RTLD_NEXT, "pthread_cond_signal"));
    for (Worker& worker : workers()) {
        if (worker.condition != condition) continue;
        ++gSignalCount;
        // A signal is lost if nobody is waiting, as on a device.
        if (worker.state == State::Waiting) worker.state = State::Ready;
        return 0;
    }
    return real(condition);
}

android::status_t android::Thread::run(const char* name, int32_t priority, size_t stackBytes) {
    Worker& worker = workers().emplace_back();
    worker.started = {name, priority, stackBytes};
    context::fixedsize_stack allocator(kStackBytes);
    worker.stack = allocator.allocate();
    const context::preallocated stack(worker.stack.sp, worker.stack.size, worker.stack);
    const auto body = [this, &worker](context::fiber&& main) {
        worker.note.afterEntering();
        worker.main = std::move(main);
        const sp<Thread> self(this);
        while (threadLoop() && !exitPending()) {
        }
        worker.state = State::Ended;
        worker.note.beforeLeaving(true);
        return std::move(worker.main);
    };
    worker.self = context::fiber(std::allocator_arg, stack, allocator, body);
    return OK;
}
