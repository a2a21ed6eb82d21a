#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>

#include <cerrno>
#include <thread>

#include "tests/test_device.h"

// How the library calls its platform. A separate program, because it replaces the lock functions.

namespace {

// If not 0, locking fails with this error; unlocking succeeds, but returns it.
thread_local int tLockError;
thread_local int tUnlockError;
std::string gOpened;
bool gIsClientMissing;

// If not null, called before this thread waits for a lock.
thread_local void (*tBeforeWaiting)();

template <typename Fn>
Fn real(const char* symbol) {
    return reinterpret_cast<Fn>(dlsym(RTLD_NEXT, symbol));
}

}  // namespace

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) {
    static int (*gReal)(pthread_mutex_t*);
    if (gReal == nullptr) gReal = real<int (*)(pthread_mutex_t*)>("pthread_mutex_lock");
    if (tLockError != 0) return tLockError;
    if (tBeforeWaiting != nullptr) {
        if (pthread_mutex_trylock(mutex) == 0) return 0;
        std::exchange(tBeforeWaiting, nullptr)();
    }
    return gReal(mutex);
}

extern "C" int pthread_mutex_unlock(pthread_mutex_t* mutex) {
    static int (*gReal)(pthread_mutex_t*);
    if (gReal == nullptr) gReal = real<int (*)(pthread_mutex_t*)>("pthread_mutex_unlock");
    const int status = gReal(mutex);
    return tUnlockError != 0 ? tUnlockError : status;
}

extern "C" void* dlopen(const char* path, int flags) {
    static void* (*gReal)(const char*, int);
    if (gReal == nullptr) gReal = real<void* (*)(const char*, int)>("dlopen");
    if (path != nullptr) gOpened += path + (" " + std::to_string(flags)) + "; ";
    if (gIsClientMissing && path != nullptr && path == std::string(brevold::test::kClient))
        return nullptr;
    return gReal(path, flags);
}

namespace brevold::test {
namespace {

using PlatformTest = TargetAppTest;

TEST_F(PlatformTest, OpensTheFeatureSwitchLazilyAndTheClientAtOnce) {
    gOpened.clear();
    restart();
    EXPECT_EQ(gOpened, "libfeatgate_system.so 1; libvnx-perfd-client_system.so 2; ");
    // Without the client, functions that were found before stay, but new workers have none.
    gIsClientMissing = true;
    restart();
    const std::string log = takeLogTexts();
    const std::string failed = "; Failed to get hwopt handle.\n";
    EXPECT_EQ(log.substr(log.find(';')), failed + failed + failed);
}

TEST_F(PlatformTest, AFailedLockAbortsExceptInModeMonitorAndWorkers) {
    void (*const entries[])() = {[] { brevoldInit(); }, [] { brevoldMonitor(0, 0); },
                                 [] { brevoldScaling(0, 0); },
                                 [] { android::brevoldLayerStatusCheck(true, "", 0, 0); }};
    for (const auto entry : entries) {
        EXPECT_ABORT((tLockError = EINVAL, entry()));
    }
    tLockError = EINVAL;
    android::modeMonitor(kSecondNs);
    android::releaseScaling();
    tLockError = 0;
}

TEST_F(PlatformTest, ScalingReturnsTheStatusOfUnlocking) {
    tUnlockError = EPERM;
    const int status = brevoldScaling(0, 0);
    tUnlockError = 0;
    EXPECT_EQ(status, EPERM);
}

sem_t gCallIsDecided;
bool gIsBlocked;

// Makes a call on a thread of its own. Returns once it has ended or is blocked.
std::thread start(void (*call)()) {
    gIsBlocked = false;
    std::thread thread([call] {
        tBeforeWaiting = [] {
            gIsBlocked = true;
            sem_post(&gCallIsDecided);
        };
        call();
        if (std::exchange(tBeforeWaiting, nullptr) != nullptr) sem_post(&gCallIsDecided);
    });
    sem_wait(&gCallIsDecided);
    return thread;
}

template <int queuedFrames>
void report() {
    LayerFrameInfo info = frame(queuedFrames);
    brevoldOnFrameAvailable(&info);
}

TEST_F(PlatformTest, AHintInProgressBlocksRequestsToItsWorkerAndItsWaitersLock) {
    sem_init(&gCallIsDecided, 0, 0);
    measure(kPeriod60Ns);
    void (*const boost)() = [] { brevoldScaling(2, 0); };
    // Blocked while "SF" sends; while "QB" does; while brevoldScaling waits for "SF" too.
    const std::tuple<const char*, void (*)(), const char*> rows[] = {
            {"check", [] { brevoldCheck("sf"); }, "---"},
            {"monitor", [] { brevoldMonitor(1, kPeriod60Ns); }, "--x"},
            {"scaling, not due", [] { brevoldScaling(1, 0); }, "--x"},
            {"scaling, posting", boost, "x-x"},
            {"report", report<0>, "--x"},
            {"report, DOWN", report<2>, "-xx"},
            {"refresh", brevoldRefresh, "x-x"},
            {"release", android::releaseScaling, "x-x"},
            {"QB request", [] { android::energyScaling(1.0f, 1, 0, kQb); }, "-x-"},
    };
    for (const auto& [name, call, expected] : rows) {
        std::string blocked;
        for (const auto& [channel, isScalingWaiting] :
             {std::pair(kSf, false), {kQb, false}, {kSf, true}}) {
            startHint(channel);
            std::thread scaling;
            if (isScalingWaiting) scaling = start(boost);
            std::thread caller = start(call);
            blocked += gIsBlocked ? 'x' : '-';
            endHint();
            caller.join();
            if (isScalingWaiting) scaling.join();
            host::settle();
            android::releaseScaling();
            host::settle();
        }
        EXPECT_EQ(blocked, expected) << name;
    }
}

}  // namespace
}  // namespace brevold::test
