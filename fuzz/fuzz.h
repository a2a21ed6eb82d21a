#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>

namespace brevold::fuzz {

/** Ends the process, which libFuzzer reports with the input that led here. */
inline void require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "does not hold: %s\n", what);
    abort();
}

}  // namespace brevold::fuzz
