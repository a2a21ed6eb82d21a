#include "host/fake_device.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace brevold::host {

namespace {

std::filesystem::path programFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

}  // namespace

void* openLibrary(const std::string& path) {
    void* const handle = dlopen(path.c_str(), RTLD_NOW);
    if (handle == nullptr) throw std::runtime_error(dlerror());
    return handle;
}

void* findSymbol(void* library, const char* symbol) {
    void* const found = dlsym(library, symbol);
    if (found == nullptr) throw std::runtime_error(dlerror());
    return found;
}

std::string libraryPath() {
    return programFolder() / "libbrevold.so";
}

void startFakeDevice(ServiceListener listener, void* context) {
    const std::filesystem::path fakes = programFolder() / "fakes";
    void* const client = openLibrary(fakes / "libvnx-perfd-client_system.so");
    openLibrary(fakes / "libfeatgate_system.so");
    findFunction<decltype(&perfd_set_listener)>(client, kSetServiceListener)(listener, context);
}

}  // namespace brevold::host
