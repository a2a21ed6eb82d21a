#pragma once

#include <cstdio>
#include <cstdlib>

namespace brevold::fuzz {

/** Aborts if the condition does not hold. libFuzzer then reports the input. */
inline void require(bool holds, const char* condition) {
    if (holds) return;
    fprintf(stderr, "does not hold: %s\n", condition);
    abort();
}

}  // namespace brevold::fuzz
