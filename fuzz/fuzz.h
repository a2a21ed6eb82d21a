#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

namespace brevold::fuzz {

/** Ends the process, which libFuzzer reports with the input that led here. */
inline void require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "does not hold: %s\n", what);
    abort();
}

/** The functions of the libraries that can be opened, by the libraries' names and theirs. */
inline std::map<std::string, std::map<std::string, void*>> gLibraries;

template <typename Fn>
void* address(Fn* function) {
    return reinterpret_cast<void*>(function);
}

}  // namespace brevold::fuzz
