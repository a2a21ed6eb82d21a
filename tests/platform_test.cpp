#include <dlfcn.h>
#include <pthread.h>

#include <cerrno>

#include "tests/test_device.h"

// How the library calls its platform. A separate program, because it replaces the lock functions.

namespace {

// If not 0, locking fails with this error; unlocking succeeds, but returns it.
thread_local int tLockError;
thread_local int tUnlockError;
std::string gOpened;

template <typename Fn>
Fn real(const char* symbol) {
    return reinterpret_cast<Fn>(dlsym(RTLD_NEXT, symbol));
}

}  // namespace

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) {
    static int (*gReal)(pthread_mutex_t*);
    if (gReal == nullptr) gReal = real<int (*)(pthread_mutex_t*)>("pthread_mutex_lock");
    return tLockError != 0 ? tLockError : gReal(mutex);
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
    return gReal(path, flags);
}

namespace brevold::test {
namespace {

using PlatformTest = TargetAppTest;

TEST_F(PlatformTest, OpensTheFeatureSwitchLazilyAndTheClientAtOnce) {
    gOpened.clear();
    restart();
    EXPECT_EQ(gOpened, "libfeatgate_system.so 1; libvnx-perfd-client_system.so 2; ");
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

}  // namespace
}  // namespace brevold::test
