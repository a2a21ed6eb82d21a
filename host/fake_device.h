#pragma once

#include <string>

#include "host/fake_perf_client.h"

namespace brevold::host {

/** Opens a shared library. Throws std::runtime_error if it cannot be opened. */
void* openLibrary(const std::string& path);

/** Returns a symbol of an open library. Throws std::runtime_error if it has none of that name. */
void* findSymbol(void* library, const char* symbol);

template <typename Fn>
Fn findFunction(void* library, const char* symbol) {
    return reinterpret_cast<Fn>(findSymbol(library, symbol));
}

/**
 * Returns the path of libbrevold.so. It is next to the program in a build folder, and in the
 * library folder of the same prefix in an installation. Throws std::runtime_error if it is in
 * neither.
 */
std::string libraryPath();

/**
 * Opens the fake performance client and the fake feature switch, which the library's own dlopen
 * then finds by name. They answer from the device profile. Throws std::runtime_error.
 *
 * @param listener called for each call of the performance service; see fake_perf_client.h.
 */
void startFakeDevice(ServiceListener listener, void* context);

}  // namespace brevold::host
