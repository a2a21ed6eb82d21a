// A compositor that closes the library while its workers wait, and wakes one of them afterwards and
// again when the library's destructors have run at exit.

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/device_profile.h"
#include "host/perfd_client.h"
#include "host/virtual_platform.h"

using namespace brevold::host;

namespace {

int gHints;

void require(bool condition, const char* what) {
    if (condition) return;
    fprintf(stderr, "unload_test: %s\n", what);
    _exit(1);
}

template <typename Function>
Function find(const char* library, const char* symbol) {
    void* const handle = dlopen(library, RTLD_NOW);
    require(handle != nullptr, library);
    return reinterpret_cast<Function>(dlsym(handle, symbol));
}

void wakeWorker(const char* when) {
    const int before = gHints;
    wakeSpuriously(0);
    settle();
    require(gHints == before + 1, when);
}

}  // namespace

int main() {
    atexit([] { wakeWorker("no hint after the library's destructors"); });
    setProfileEntry("vendor.perf.pfar.enable=1");
    setProfileEntry("feature.5=1");
    find<void*>(BREVOLD_STANDINS "/libfeatgate_system.so", "IsFeatureEnabled");
    find<decltype(&perfd_set_listener)>(BREVOLD_STANDINS "/libvnx-perfd-client_system.so",
                                        kSetServiceListener)(
            [](const ServiceCall&, void*) { ++gHints; }, nullptr);

    void* const library = dlopen(BREVOLD_LIBRARY, RTLD_NOW);
    require(library != nullptr, dlerror());
    require(reinterpret_cast<bool (*)()>(dlsym(library, "brevoldInit"))(), "no feature is on");
    settle();
    // Without a boost the "SF" worker sends a release at every wake-up.
    reinterpret_cast<void (*)(float, unsigned, unsigned, int)>(
            dlsym(library, "_ZN7android13energyScalingEfjji"))(1.0f, 1, 0, 0);
    settle();
    require(gHints == 1, "no hint before the library is closed");
    require(dlclose(library) == 0, "the library cannot be closed");
    wakeWorker("no hint after the library was closed");
}
