#include "host/fake_device.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

#include "brevold/protocol.h"

namespace brevold::host {

namespace {

namespace fs = std::filesystem;

constexpr char kLibraryName[] = "libbrevold.so";

/** The folders of the running program's libraries. */
struct Folders {
    fs::path library;
    fs::path fakes;
};

Folders findFolders() {
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path();
    const fs::path installed = (program / BREVOLD_LIBDIR_FROM_BINDIR).lexically_normal();
    for (const Folders& folders :
         {Folders{program, program / "fakes"}, Folders{installed, installed / "brevold"}}) {
        if (fs::exists(folders.library / kLibraryName)) return folders;
    }
    throw std::runtime_error(std::string(kLibraryName) + " is neither in " + program.string() +
                             " nor in " + installed.string());
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
    return findFolders().library / kLibraryName;
}

void startFakeDevice(ServiceListener listener, void* context) {
    const fs::path fakes = findFolders().fakes;
    void* const client = openLibrary(fakes / android::kPerfClientLibrary);
    openLibrary(fakes / android::kFeatureLibrary);
    findFunction<decltype(&perfd_set_listener)>(client, kSetServiceListener)(listener, context);
}

}  // namespace brevold::host
