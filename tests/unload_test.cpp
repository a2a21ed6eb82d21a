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

namespace {

using namespace brevold::host;

constexpr size_t kSfThread = 0;

int gHints;

void require(bool condition, const char* what) {
    if (condition) return;
    fprintf(stderr, "unload_test: %s\n", what);
    _exit(1);
}

void* open(const std::string& path) {
    void* const handle = dlopen(path.c_str(), RTLD_NOW);
    require(handle != nullptr, dlerror());
    return handle;
}

template <typename Function>
Function find(void* library, const char* symbol) {
    return reinterpret_cast<Function>(dlsym(library, symbol));
}

void wakeWorker(const char* when) {
    const int before = gHints;
    wakeSpuriously(kSfThread);
    settle();
    require(gHints == before + 1, when);
}

}  // namespace

int main() {
    atexit([] { wakeWorker("no hint after the library's destructors"); });
    for (const char* entry : {"vendor.perf.pfar.enable=1", "feature.5=1"})
        setProfileEntry(entry);
    open(BREVOLD_STANDINS "/libfeatgate_system.so");
    find<decltype(&perfd_set_listener)>(open(BREVOLD_STANDINS "/libvnx-perfd-client_system.so"),
                                        kSetServiceListener)(
            [](const ServiceCall&, void*) { ++gHints; }, nullptr);

    void* const library = open(BREVOLD_LIBRARY);
    require(find<bool (*)()>(library, "brevoldInit")(), "no feature is on");
    settle();
    // Without a boost the "SF" worker sends a release at every wake-up.
    find<void (*)(float, unsigned, unsigned, int)>(library, "_ZN7android13energyScalingEfjji")(
            1.0f, 1, 0, 0);
    settle();
    require(gHints == 1, "no hint before the library is closed");
    require(dlclose(library) == 0, "the library cannot be closed");
    wakeWorker("no hint after the library was closed");
}
