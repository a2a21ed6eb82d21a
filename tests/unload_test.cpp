// A compositor closes the library while its workers wait. Afterwards one of them is woken, and
// again after the library's destructors have run at exit.

#undef NDEBUG
#include <dlfcn.h>

#include <cassert>
#include <cstdlib>

#include "host/device_profile.h"
#include "host/driver.h"
#include "host/fake_device.h"
#include "host/workers.h"

using namespace brevold::host;

namespace {

Driver* gDriver;

size_t takeHintCount() {
    settle();
    return gDriver->takeServiceCalls().size();
}

void wakeWorker() {
    wakeSpuriously(0);
    assert(takeHintCount() == 1);
}

}  // namespace

int main() {
    atexit(wakeWorker);
    setProfileEntry("vendor.perf.pfar.enable=1");
    setProfileEntry("feature.5=1");
    gDriver = new Driver(Workers::Stepped);  // still used at exit
    assert(gDriver->init(0));
    // Without a boost, the "SF" worker sends a release at every wake-up.
    void* const library = openLibrary(libraryPath());
    findFunction<void (*)(float, unsigned, unsigned, int)>(
            library, "_ZN7android13energyScalingEfjji")(1.0f, 1, 0, 0);
    assert(takeHintCount() == 1);
    assert(dlclose(library) == 0);
    gDriver->closeLibrary();
    wakeWorker();
}
