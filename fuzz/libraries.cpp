#include "fuzz/fuzz.h"

using brevold::fuzz::gLibraries;

// What the library calls in place of dlopen and its kin.
extern "C" void* fuzzDlopen(const char* name, int) {
    const auto found = gLibraries.find(name);
    return found == gLibraries.end() ? nullptr : &found->second;
}
extern "C" void* fuzzDlsym(void* handle, const char* name) {
    const auto& functions = *static_cast<std::map<std::string, void*>*>(handle);
    const auto found = functions.find(name);
    return found == functions.end() ? nullptr : found->second;
}
extern "C" int fuzzDlclose(void*) {
    return 0;
}
