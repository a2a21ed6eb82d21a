// A compositor that closes the library while its workers wait, and wakes one of them afterwards and
// again when the library's destructors have run at exit.

#undef NDEBUG
#include <dlfcn.h>

#include <cassert>
#include <cstdlib>

#include "host/device_profile.h"
#include "host/fake_perf_client.h"
#include "host/virtual_platform.h"
#include "host/workers.h"

using namespace brevold::host;

namespace {

int gHints;

template <typename Function>
Function find(const char* library, const char* symbol) {
    void* const handle = dlopen(library, RTLD_NOW);
    assert(handle != nullptr);
    return reinterpret_cast<Function>(dlsym(handle, symbol));
}

void wakeWorker() {
    const int before = gHints;
    wakeSpuriously(0);
    settle();
    assert(gHints == before + 1);
}

}  // namespace

int main() {
    atexit(wakeWorker);
    setProfileEntry("vendor.perf.pfar.enable=1");
    setProfileEntry("feature.5=1");
    find<void*>(BREVOLD_FAKES "/libfeatgate_system.so", "IsFeatureEnabled");
    find<decltype(&perfd_set_listener)>(BREVOLD_FAKES "/libvnx-perfd-client_system.so",
                                        kSetServiceListener)(
            [](const ServiceCall&, void*) { ++gHints; }, nullptr);
    assert(find<bool (*)()>(BREVOLD_LIBRARY, "brevoldInit")());
    settle();
    // Without a boost the "SF" worker sends a release at every wake-up.
    find<void (*)(float, unsigned, unsigned, int)>(
            BREVOLD_LIBRARY, "_ZN7android13energyScalingEfjji")(1.0f, 1, 0, 0);
    settle();
    assert(gHints == 1);
    void* const library = dlopen(BREVOLD_LIBRARY, RTLD_NOW);
    for (int opened = 0; opened < 3; ++opened)
        assert(dlclose(library) == 0);
    wakeWorker();
}
